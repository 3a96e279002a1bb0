/*
 * Builds the homogeneous linear system A*h = 0 that point pairs put on a compact transformation h: two rows for each
 * pair. Coordinate a of a point is x for points in columns and y for points in rows, coordinate b the other one.
 *
 * Inputs:
 *     pts1: in, coordinates: all x, then all y
 *     pts2: in, the matched points, likewise
 *     sampleNum: number of pairs to use, the first ones
 *     maxSampleNum: number of points in pts1 and in pts2: where the y begin
 *     constraint: out, 2*sampleNum rows, one row after the other
 *
 * Generator: generateMakeConstraintMatrixFcn
 */
static void makeConstraintMatrix_Affine_U8_D(const uint8_t* pts1, const uint8_t* pts2, uint32_t sampleNum,
    uint32_t maxSampleNum, double* constraint)
{
    uint32_t i;
    uint32_t j; /* where the point begins */
    uint32_t k; /* next value of the matrix */
    uint32_t offsetX; /* of coordinate b */
    uint32_t offsetY; /* of coordinate a */
    uint32_t offsetPoint; /* from point to point */

    /* Generate the constraint matrix. */
    offsetX = 0U;
    offsetY = maxSampleNum;
    offsetPoint = 1U;
    j = 0U;
    k = 0U;
    for (i = 0U; i < sampleNum; i++) {
        constraint[k] = 0.0;
        k++;
        constraint[k] = 0.0;
        k++;
        constraint[k] = 0.0;
        k++;
        constraint[k] = -(double)pts1[j + offsetY];
        k++;
        constraint[k] = -(double)pts1[j + offsetX];
        k++;
        constraint[k] = -1.0;
        k++;
        constraint[k] = (double)pts2[j + offsetX];
        k++;
        constraint[k] = (double)pts1[j + offsetY];
        k++;
        constraint[k] = (double)pts1[j + offsetX];
        k++;
        constraint[k] = 1.0;
        k++;
        constraint[k] = 0.0;
        k++;
        constraint[k] = 0.0;
        k++;
        constraint[k] = 0.0;
        k++;
        constraint[k] = -(double)pts2[j + offsetY];
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
 *     pts: in, 2*ptsNum coordinates: all x, then all y
 *     samples: in, sampleNum indices of points
 *     ptsNum: number of points in pts
 *     sampleNum: number of points to take
 *     ptsNorm: out, 2*sampleNum coordinates in the layout of pts: scale * (point - cents)
 *     scale: out, 1 value; left alone when the points coincide
 *     cents: out, centroid (a, b)
 *
 * Generator: generateNormPtsFcn
 */
static void normPts_U8_D(const uint8_t* pts, const uint32_t* samples, uint32_t ptsNum, uint32_t sampleNum,
    double* ptsNorm, double* scale, double* cents)
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
    double dis; /* distance of a point from the centroid */
    double sumDis;
    double loc; /* one coordinate */

    /* Normalize the points. */
    offsetXIn = 0U;
    offsetYIn = ptsNum;
    offsetPointIn = 1U;
    offsetXOut = 0U;
    offsetYOut = sampleNum;
    offsetPointOut = 1U;
    cents[0] = 0.0;
    cents[1] = 0.0;
    for (i = 0U; i < sampleNum; i++) {
        j = samples[i] * offsetPointIn;
        k = i * offsetPointOut;
        loc = (double)pts[j + offsetYIn];
        ptsNorm[k + offsetYOut] = loc;
        cents[0] = cents[0] + loc;
        loc = (double)pts[j + offsetXIn];
        ptsNorm[k + offsetXOut] = loc;
        cents[1] = cents[1] + loc;
    }
    cents[0] = cents[0] / (double)sampleNum;
    cents[1] = cents[1] / (double)sampleNum;
    sumDis = 0.0;
    for (i = 0U; i < sampleNum; i++) {
        j = i * offsetPointOut;
        ptsNorm[j + offsetYOut] = ptsNorm[j + offsetYOut] - cents[0];
        ptsNorm[j + offsetXOut] = ptsNorm[j + offsetXOut] - cents[1];
        k = j + offsetXOut;
        j = j + offsetYOut;
        dis = sqrt(ptsNorm[j] * ptsNorm[j] + ptsNorm[k] * ptsNorm[k]);
        sumDis = sumDis + dis;
    }
    if (sumDis > 0.0) {
        scale[0] = 1.4142135623730951;
        scale[0] = scale[0] * (double)sampleNum;
        scale[0] = scale[0] / sumDis;
        for (i = 0U; i < 2U * sampleNum; i++) {
            ptsNorm[i] = ptsNorm[i] * scale[0];
        }
    }
}

/*
 * Builds the homogeneous linear system A*h = 0 that point pairs put on a compact transformation h: two rows for each
 * pair. Coordinate a of a point is x for points in columns and y for points in rows, coordinate b the other one.
 *
 * Inputs:
 *     pts1: in, coordinates: all x, then all y
 *     pts2: in, the matched points, likewise
 *     sampleNum: number of pairs to use, the first ones
 *     maxSampleNum: number of points in pts1 and in pts2: where the y begin
 *     constraint: out, 2*sampleNum rows, one row after the other
 *
 * Generator: generateMakeConstraintMatrixFcn
 */
static void makeConstraintMatrix_Affine_D_D(const double* pts1, const double* pts2, uint32_t sampleNum,
    uint32_t maxSampleNum, double* constraint)
{
    uint32_t i;
    uint32_t j; /* where the point begins */
    uint32_t k; /* next value of the matrix */
    uint32_t offsetX; /* of coordinate b */
    uint32_t offsetY; /* of coordinate a */
    uint32_t offsetPoint; /* from point to point */

    /* Generate the constraint matrix. */
    offsetX = 0U;
    offsetY = maxSampleNum;
    offsetPoint = 1U;
    j = 0U;
    k = 0U;
    for (i = 0U; i < sampleNum; i++) {
        constraint[k] = 0.0;
        k++;
        constraint[k] = 0.0;
        k++;
        constraint[k] = 0.0;
        k++;
        constraint[k] = -pts1[j + offsetY];
        k++;
        constraint[k] = -pts1[j + offsetX];
        k++;
        constraint[k] = -1.0;
        k++;
        constraint[k] = pts2[j + offsetX];
        k++;
        constraint[k] = pts1[j + offsetY];
        k++;
        constraint[k] = pts1[j + offsetX];
        k++;
        constraint[k] = 1.0;
        k++;
        constraint[k] = 0.0;
        k++;
        constraint[k] = 0.0;
        k++;
        constraint[k] = 0.0;
        k++;
        constraint[k] = -pts2[j + offsetY];
        k++;
        j = j + offsetPoint;
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
static void QRV2Norm_double(double* V, int32_t N, double* v2norm)
{
    double nrm; /* norm of the values so far */
    int32_t vi; /* index of the value */
    int32_t i;
    double Vd; /* next value, or part of it */

    nrm = 0.0;
    vi = 0;
    for (i = 0; i < N; i++) {
        double tmp; /* ratio of the smaller to the larger magnitude */
        double val;

        Vd = V[vi];
        val = 0.0;
        if (fabs(nrm) > fabs(Vd)) {
            tmp = Vd / nrm;
            val = fabs(nrm) * sqrt(1.0 + tmp * tmp);
        } else if (Vd == 0.0) {
            val = 0.0;
        } else {
            tmp = nrm / Vd;
            val = fabs(Vd) * sqrt(1.0 + tmp * tmp);
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
static void QRCompQy_double(double* qr, double* qrAuxj, double* y, int32_t n, int32_t j)
{
    double j_1; /* magnitude of qrAuxj */
    int32_t nmj; /* n - j */
    int32_t i;
    int32_t pjj; /* index of the diagonal element */
    double t; /* -(v'*y) / v[0] */
    double temp; /* diagonal element of R */
    int32_t pqr; /* index into qr */
    int32_t py; /* index into y */
    double tmp;

    tmp = 0.0;
    j_1 = fabs(qrAuxj[0]);
    if (j_1 != 0.0) {
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
 * Applies all Householder transformations: y := Q*y.
 *
 * Inputs:
 *     qr: in, n x k column by column, as QRDC leaves it; its diagonal is changed and restored
 *     qrAux: in, k values: leading elements of the Householder vectors
 *     y: in/out, n values
 *     n: rows
 *     k: columns of qr that hold transformations
 *
 * Generator: QRFactQRSL1Gen
 */
static void QRSL1_double(double* qr, double* qrAux, double* y, int32_t n, int32_t k)
{
    int32_t j; /* number of transformations */
    int32_t i;
    int32_t pqraux; /* index into qrAux */
    int32_t py; /* index into y */

    if (k < n - 1) {
        j = k;
    } else {
        j = n - 1;
    }
    if (j != 0) {
        pqraux = j - 1;
        py = j - 1;
        for (i = j; i > 0; i--) {
            QRCompQy_double(qr, &qrAux[pqraux], &y[py], n, i - 1);
            pqraux--;
            py--;
        }
    }
}

