/*
 * Builds the homogeneous linear system A*h = 0 that point pairs put on a compact transformation h: two rows for each
 * pair. Coordinate a of a point is x for points in columns and y for points in rows, coordinate b the other one.
 *
 * Inputs:
 *     pts1: in, coordinates: x and y of each point
 *     pts2: in, the matched points, likewise
 *     sampleNum: number of pairs to use, the first ones
 *     maxSampleNum: number of points in pts1 and in pts2
 *     constraint: out, 2*sampleNum rows, one row after the other
 *
 * Generator: generateMakeConstraintMatrixFcn
 */
static void makeConstraintMatrix_Projective_R_R(const float* pts1, const float* pts2, uint32_t sampleNum,
    uint32_t maxSampleNum, float* constraint)
{
    uint32_t i;
    uint32_t j; /* where the point begins */
    uint32_t k; /* next value of the matrix */
    uint32_t offsetX; /* of coordinate b */
    uint32_t offsetY; /* of coordinate a */
    uint32_t offsetPoint; /* from point to point */

    (void)maxSampleNum;
    /* Generate the constraint matrix. */
    offsetX = 1U;
    offsetY = 0U;
    offsetPoint = 2U;
    j = 0U;
    k = 0U;
    for (i = 0U; i < sampleNum; i++) {
        constraint[k] = 0.0F;
        k++;
        constraint[k] = 0.0F;
        k++;
        constraint[k] = 0.0F;
        k++;
        constraint[k] = -pts1[j + offsetY];
        k++;
        constraint[k] = -pts1[j + offsetX];
        k++;
        constraint[k] = -1.0F;
        k++;
        constraint[k] = pts2[j + offsetX];
        constraint[k] = constraint[k] * pts1[j + offsetY];
        k++;
        constraint[k] = pts2[j + offsetX];
        constraint[k] = constraint[k] * pts1[j + offsetX];
        k++;
        constraint[k] = pts2[j + offsetX];
        k++;
        constraint[k] = pts1[j + offsetY];
        k++;
        constraint[k] = pts1[j + offsetX];
        k++;
        constraint[k] = 1.0F;
        k++;
        constraint[k] = 0.0F;
        k++;
        constraint[k] = 0.0F;
        k++;
        constraint[k] = 0.0F;
        k++;
        constraint[k] = -pts2[j + offsetY];
        constraint[k] = constraint[k] * pts1[j + offsetY];
        k++;
        constraint[k] = -pts2[j + offsetY];
        constraint[k] = constraint[k] * pts1[j + offsetX];
        k++;
        constraint[k] = -pts2[j + offsetY];
        k++;
        j = j + offsetPoint;
    }
}

/*
 * Normalizes a subset of a point set: its centroid is moved to the origin, and the coordinates are scaled to a mean
 * distance of sqrt(2) from there (isotropic scaling). Coordinate a of a point is x for points in columns and y for
 * points in rows, coordinate b the other one.
 *
 * Inputs:
 *     pts: in, 2*ptsNum coordinates: x and y of each point
 *     samples: in, sampleNum indices of points
 *     ptsNum: number of points in pts
 *     sampleNum: number of points to take
 *     ptsNorm: out, 2*sampleNum coordinates in the layout of pts: scale * (point - cents)
 *     scale: out, 1 value; left alone when the points coincide
 *     cents: out, centroid (a, b)
 *
 * Generator: generateNormPtsFcn
 */
static void normPts_R_R(const float* pts, const uint32_t* samples, uint32_t ptsNum, uint32_t sampleNum, float* ptsNorm,
    float* scale, float* cents)
{
    uint32_t i;
    uint32_t j;
    uint32_t k;
    uint32_t offsetXIn; /* of coordinate b in pts */
    uint32_t offsetYIn; /* of coordinate a in pts */
    uint32_t offsetPointIn; /* from point to point in pts */
    uint32_t offsetXOut; /* of coordinate b in ptsNorm */
    uint32_t offsetYOut; /* of coordinate a in ptsNorm */
    uint32_t offsetPointOut; /* from point to point in ptsNorm */
    float dis; /* distance of a point from the centroid */
    float sumDis;
    float loc; /* one coordinate */

    (void)ptsNum;
    /* Normalize the points. */
    offsetXIn = 1U;
    offsetYIn = 0U;
    offsetPointIn = 2U;
    offsetXOut = 1U;
    offsetYOut = 0U;
    offsetPointOut = 2U;
    cents[0] = 0.0F;
    cents[1] = 0.0F;
    for (i = 0U; i < sampleNum; i++) {
        j = samples[i] * offsetPointIn;
        k = i * offsetPointOut;
        loc = pts[j + offsetYIn];
        ptsNorm[k + offsetYOut] = loc;
        cents[0] = cents[0] + loc;
        loc = pts[j + offsetXIn];
        ptsNorm[k + offsetXOut] = loc;
        cents[1] = cents[1] + loc;
    }
    cents[0] = cents[0] / (float)sampleNum;
    cents[1] = cents[1] / (float)sampleNum;
    sumDis = 0.0F;
    for (i = 0U; i < sampleNum; i++) {
        j = i * offsetPointOut;
        ptsNorm[j + offsetYOut] = ptsNorm[j + offsetYOut] - cents[0];
        ptsNorm[j + offsetXOut] = ptsNorm[j + offsetXOut] - cents[1];
        k = j + offsetXOut;
        j = j + offsetYOut;
        dis = sqrtf(ptsNorm[j] * ptsNorm[j] + ptsNorm[k] * ptsNorm[k]);
        sumDis = sumDis + dis;
    }
    if (sumDis > 0.0F) {
        scale[0] = 1.4142135F;
        scale[0] = scale[0] * (float)sampleNum;
        scale[0] = scale[0] / sumDis;
        for (i = 0U; i < 2U * sampleNum; i++) {
            ptsNorm[i] = ptsNorm[i] * scale[0];
        }
    }
}

/*
 * 2-norm of a vector as a running hypot in the order of the values, without overflow.
 *
 * Inputs:
 *     V: in, N values
 *     N: number of values, 0 or more
 *     v2norm: out, 1 value
 *
 * Generator: QRFactV2normGen
 */
static void QRV2Norm_single(float* V, int32_t N, float* v2norm)
{
    float nrm; /* norm of the values so far */
    int32_t vi; /* index of the value */
    int32_t i;
    float Vd; /* next value, or part of it */

    nrm = 0.0F;
    vi = 0;
    for (i = 0; i < N; i++) {
        float tmp; /* ratio of the smaller to the larger magnitude */
        float val;

        Vd = V[vi];
        val = 0.0F;
        if (fabsf(nrm) > fabsf(Vd)) {
            tmp = Vd / nrm;
            val = fabsf(nrm) * sqrtf(1.0F + tmp * tmp);
        } else if (Vd == 0.0F) {
            val = 0.0F;
        } else {
            tmp = nrm / Vd;
            val = fabsf(Vd) * sqrtf(1.0F + tmp * tmp);
        }
        nrm = val;
        vi++;
    }
    v2norm[0] = nrm;
}

/*
 * Applies one Householder transformation: y := H*y.
 *
 * Inputs:
 *     qr: in, n rows column by column, as QRDC leaves them; a diagonal element is changed and restored
 *     qrAuxj: in, 1 value: leading element of Householder vector j, 0 for none
 *     y: in/out, n - j values: those of the vector from index j on
 *     n: rows of qr
 *     j: index of the transformation
 *
 * Generator: QRFactCompQyGen
 */
static void QRCompQy_single(float* qr, float* qrAuxj, float* y, int32_t n, int32_t j)
{
    float j_1; /* magnitude of qrAuxj */
    int32_t nmj; /* n - j */
    int32_t i;
    int32_t pjj; /* index of the diagonal element */
    float t; /* -(v'*y) / v[0] */
    float temp; /* diagonal element of R */
    int32_t pqr; /* index into qr */
    int32_t py; /* index into y */
    float tmp;

    tmp = 0.0F;
    j_1 = fabsf(qrAuxj[0]);
    if (j_1 != 0.0F) {
        nmj = n - j;
        pjj = j * (n + 1);
        pqr = pjj;
        temp = qr[pjj];
        qr[pjj] = qrAuxj[0];
        t = tmp;
        py = 0;
        for (i = nmj; i > 0; i--) {
            t = t - qr[pqr] * y[py];
            pqr++;
            py++;
        }
        pqr = pjj;
        t = t / qr[pjj];
        py = 0;
        for (i = nmj; i > 0; i--) {
            y[py] = y[py] + t * qr[pqr];
            pqr++;
            py++;
        }
        pqr = pjj;
        qr[pjj] = temp;
    }
}

/*
 * Factorization A*E = Q*R by Householder transformations with column pivoting, with explicit factors.
 *
 * Inputs:
 *     outQ: out, M x L column by column; L = min(M, N) with economy, else M
 *     outR: in/out, M x N column by column: A; economy and M > N: left as QRDC leaves it; otherwise R, upper triangular
 *     outE: out, N values: column of A, counted from 1, that is column k of A*E
 *     qrAux: out, N values: leading elements of the Householder vectors
 *     work: scratch, N values
 *     jpvt: in/out, N values: marks of columns, 0 for none; then outE counted from 0
 *     sPtr: out, N x N column by column: R; written only with economy and M > N
 *     M: rows, at least 1
 *     N: columns, at least 1
 *     economy: form only the first min(M, N) columns of Q
 *
 * Generator: QRFactQREGen
 */
static void QRE_single(float* outQ, float* outR, float* outE, float* qrAux, float* work, int32_t* jpvt, float* sPtr,
    int32_t M, int32_t N, bool economy)
{
    int32_t i;
    int32_t j;
    int32_t L; /* columns of Q */
    int32_t pq; /* index into outQ */
    int32_t pr; /* index into outR */
    int32_t ps; /* index into sPtr */
    int32_t pe; /* index into outE */
    int32_t pjpvt; /* index into jpvt */

    QRDC_single(outR, qrAux, jpvt, work, M, N);
    /* explicitly form q by manipulating identity */
    if (economy) {
        if (M < N) {
            L = M;
        } else {
            L = N;
        }
    } else {
        L = M;
    }
    pq = 0;
    for (j = 0; j < L * M; j++) {
        outQ[j] = 0.0F;
    }
    for (j = 0; j < L; j++) {
        outQ[pq] = 1.0F;
        pq = pq + (M + 1);
    }
    /*
     * Convert cols of identity into cols of q. Use info stored in lower triangle of r and in vector qraux to work on
     * columns of identity matrix I and transform them into q*I(:,j) i.e. the columns of q.
     */
    pq = 0;
    for (j = 0; j < L; j++) {
        QRSL1_single(outR, qrAux, &outQ[pq], M, N);
        pq = pq + M;
    }
    if (economy && M > N) {
        /* Copy upper triangle of r to s */
        pr = 0;
        ps = 0;
        for (j = 0; j < N; j++) {
            for (i = 0; i <= j; i++) {
                sPtr[ps] = outR[pr];
                ps++;
                pr++;
            }
            pr = pr + (M - (j + 1));
            for (i = 0; i < N - (j + 1); i++) {
                sPtr[ps] = 0.0F;
                ps++;
            }
        }
    } else {
        /* Zero strict lower triangle of r */
        pr = M * N - 1;
        for (j = N - 1; j >= 0; j--) {
            for (i = M; i > j + 1; i--) {
                outR[pr] = 0.0F;
                pr--;
            }
            if (M < j + 1) {
                pr = pr - M;
            } else {
                pr = pr - j - 1;
            }
        }
    }
    /* form permutation vector e */
    pe = 0;
    pjpvt = 0;
    for (j = 0; j < N; j++) {
        outE[pe] = (float)jpvt[pjpvt] + 1.0F;
        pe++;
        pjpvt++;
    }
}

