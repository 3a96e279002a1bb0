// The generated fit of a transformation to the pairs in DW_SAMPLEIDX: normalization, null vector of the constraints by QR
// (minimal set) or singular value decomposition (larger set), and the way back to input coordinates.
#include "szelesttform_cg.h"
#include "szelesttform_cg_points.h"

#include "dspqrfact.h"
#include "orbsimcommon.h"

using namespace CG;
using namespace sysobj;

/// Locals that the parts of one fit share.
struct VektCGEstTForm::FitLocals {
    Expr i, j, k;   ///< uint32
    Expr bestCol;   ///< row or column of RV that is the solution
    Expr scale1, scale2;
    Expr cents1, cents2;
    Expr h;         ///< local "tformCompact": the solution for normalized points
    Expr isOK;
    Expr RV;
};

/// @param n        int32 variable: number of pairs
/// @param outcome  Boolean variable: a transformation was found; it is in tformCompact then
void VektCGEstTForm::emitFit(Expr n, Expr outcome)
{
    ScopeBlock scope(*this);
    append("Fit of a transformation to the pairs in DW_SAMPLEIDX.");
    FitLocals v;
    v.i = createLocal("i", DT_UINT32);
    v.j = createLocal("j", DT_UINT32);
    v.k = createLocal("k", DT_UINT32);
    v.bestCol = createLocal("bestCol", DT_UINT32, 0, "row or column of RV that is the solution");
    v.scale1 = createLocal("scale1", mTc, 0, "normalization of the first points");
    v.scale2 = createLocal("scale2", mTc, 0, "normalization of the second points");
    v.cents1 = createLocal("cents1", mTc, 2, "their centroid (a, b)");
    v.cents2 = createLocal("cents2", mTc, 2, "their centroid (a, b)");
    v.h = createLocal("tformCompact", mTc, colNum, "solution for normalized points, any scale");
    v.isOK = createLocal("isOK", DT_BOOLEAN);
    v.RV = createLocal("RV", mTc, colNum * colNum, "minimal set: R, then Q*Q' - I; larger set: right singular vectors");
    const Expr curPtsNum = createLocal("curPtsNum", DT_UINT32);

    Assign(v.isOK, 0);
    append("A set of points that coincide determines no scale and keeps 1.");
    Assign(v.scale1, 1);
    Assign(v.scale2, 1);
    generateNormPtsFcn normPts(blockInterface->GetCfg(), inDataType, outDataType, GetCGType(inDataType), mTc, mIsInRows);
    normPts.setUtilityFcnScope(DSPCG::UtilityFcnScope());
    Fcn* const normPtsFcn = normPts.findOrCreateFcn();
    const Expr pairNum = cast(uint32T(), n);
    Assign(curPtsNum, cast(uint32T(), ptsNum));
    callOutlined(normPtsFcn, pts1[0], sampleIdx[0], curPtsNum, pairNum, ptsNorm1[0], v.scale1, v.cents1[0]);
    callOutlined(normPtsFcn, pts2[0], sampleIdx[0], curPtsNum, pairNum, ptsNorm2[0], v.scale2, v.cents2[0]);
    {
        IfBlock isMinimal(*this, n == sampleSize);
        emitMinimalSet(v, n);
        isMinimal.otherwise();
        emitLargerSet(v, n);
    }
    {
        IfBlock isSolved(*this, v.isOK);
        emitDenormalization(v);
    }
    Assign(outcome, v.isOK);
}

namespace {

Fcn* normalizedConstraintsFcn(Cfg* graph, std::int32_t sampleSize, int typeId, const Type* type, bool isInRows)
{
    generateMakeConstraintMatrixFcn generator(graph, sampleSize, typeId, typeId, type, type, isInRows);
    generator.setUtilityFcnScope(DSPCG::UtilityFcnScope());
    return generator.findOrCreateFcn();
}

}  // namespace

void VektCGEstTForm::emitMinimalSet(const FitLocals& v, Expr n)
{
    append("Minimal set: the null vector is a row of Q*Q' - I, where Q spans the rows of the constraints.");
    const Expr sum = createLocal("sum", mTc);
    const Expr maxSum = createLocal("maxSum", mTc);
    const Expr absSum = createLocal("absSum", mTc);
    const Expr Q = createLocal("Q", mTc, colNum * minEqnNum);
    const Expr Constraint = createLocal("Constraint", mTc, colNum * minEqnNum, "minEqnNum rows; read by columns: their transpose");
    const Expr E = createLocal("E", mTc, minEqnNum);
    const Expr Qraux = createLocal("Qraux", mTc, minEqnNum);
    const Expr Work = createLocal("Work", mTc, minEqnNum);
    const Expr JPVT = createLocal("JPVT", DT_INT32, minEqnNum);

    const Expr pairNum = cast(uint32T(), n);
    callOutlined(normalizedConstraintsFcn(blockInterface->GetCfg(), sampleSize, outDataType, mTc, mIsInRows), ptsNorm1[0],
                 ptsNorm2[0], pairNum, pairNum, Constraint[0]);
    {
        ForBlock perColumn(*this, v.i, minEqnNum);
        Assign(JPVT[v.i], 0);
    }
    QRFactQREGen qre(blockInterface->GetCfg(), mTc, true);
    qre.setUtilityFcnScope(DSPCG::UtilityFcnScope());
    callOutlined(qre.findOrCreateFcn(), Q[0], Constraint[0], E[0], Qraux[0], Work[0], JPVT[0], v.RV[0],
                 getConstScalar(int32T(), colNum), getConstScalar(int32T(), minEqnNum), getConstScalar(booleanT(), 1));

    append("The row with the entry of largest magnitude is the most accurate one. The matrix is symmetric: each entry of its "
           "upper triangle stands for two.");
    Assign(maxSum, 0);
    Assign(v.bestCol, 0);
    {
        ForBlock perRow(*this, v.i, colNum);
        CForBlock perColumn(*this, v.j, v.i, v.j < colNum);
        {
            IfBlock isDiagonal(*this, v.j == v.i);
            Assign(sum, -1);
            isDiagonal.otherwise();
            Assign(sum, 0);
        }
        {
            ForBlock perProduct(*this, v.k, minEqnNum);
            Assign(sum, sum + Q[v.k * colNum + v.i] * Q[v.k * colNum + v.j]);
        }
        Assign(v.RV[v.i * colNum + v.j], sum);
        Assign(v.RV[v.j * colNum + v.i], sum);
        {
            IfBlock isPositive(*this, sum >= 0);
            Assign(absSum, sum);
            isPositive.otherwise();
            Assign(absSum, -sum);
        }
        IfBlock isLargest(*this, maxSum < absSum);
        Assign(maxSum, absSum);
        Assign(v.bestCol, v.i);
    }
    Assign(v.isOK, 1);
}

void VektCGEstTForm::emitLargerSet(const FitLocals& v, Expr n)
{
    append("Larger set: the null vector in the least-squares sense is the last right singular vector.");
    const Expr m = createLocal("m", DT_UINT32);
    const Expr source = createLocal("n", DT_UINT32);
    const Expr E = createLocal("E", mTc, colNum);
    const Expr eqnNum = createLocal("eqnNum", DT_UINT32, 0, "constraints, two for each pair");
    const Expr svdRsltVar = createLocal("svdRsltVar", DT_INT32, 0, "0: the decomposition converged");

    const Expr pairNum = cast(uint32T(), n);
    callOutlined(normalizedConstraintsFcn(blockInterface->GetCfg(), sampleSize, outDataType, mTc, mIsInRows), ptsNorm1[0],
                 ptsNorm2[0], pairNum, pairNum, factor[0]);
    Assign(m, 0);
    {
        ForBlock perColumn(*this, v.i, colNum);
        ForBlock perRow(*this, v.j, cast(uint32T(), n + n));
        Assign(source, v.j * colNum + v.i);
        Assign(constraint[m], factor[source]);
        increment(m);
    }
    Assign(eqnNum, cast(uint32T(), 2 * n));

    const std::string headerExtension = std::string(".") + blockInterface->headerExtension();
    const std::string sourceExtension = std::string(".") + blockInterface->sourceExtension();
    const std::string svdHeader = "zelsvd_rt" + headerExtension;
    const std::string endianHeader = "zelendian_rt" + headerExtension;
    const std::string svdSource = (outDataType == DT_DOUBLE ? "svd_d_rt" : "svd_r_rt") + sourceExtension;
    const std::string helperSource = "svd_helper_rt" + sourceExtension;
    const std::string endianSource = "is_little_endian_rt" + sourceExtension;
    const char* const headers[] = {svdHeader.c_str(), endianHeader.c_str(), nullptr};
    const char* const svdSources[] = {svdSource.c_str(), helperSource.c_str(), nullptr};
    const char* const endianSources[] = {endianSource.c_str(), nullptr};
    const char* const none[] = {nullptr};
    blockInterface->AddHeader(svdHeader.c_str());
    OrbSimCommon::modifyBuildInfo(blockInterface->GetBuildInfo(), "zelblks", "zelsvd", headers, svdSources, none, none);
    OrbSimCommon::modifyBuildInfo(blockInterface->GetBuildInfo(), "zelblks", "zelendian", headers, endianSources, none, none);

    const Expr inputs[] = {constraint[0], eqnNum, getConstScalar(int32T(), colNum), ptsNorm1[0], E[0], ptsNorm2[0],
                           factor[0], v.RV[0], getConstScalar(int32T(), 1)};
    constexpr int INPUT_NUM = 9;
    Node* const svdCall = cg_node_create_untyped_external_function_call(blockInterface->GetCfg(), true, svdFcnName.c_str(),
                                                                        INPUT_NUM, 1);
    for (int i = 0; i < INPUT_NUM; ++i) cg_node_set_in_data(svdCall, i + 1, inputs[i].node());
    cg_node_set_output_type(svdCall, int32T());
    Assign(svdRsltVar, Expr(svdCall));
    Assign(v.isOK, svdRsltVar == 0);
    Assign(v.bestCol, colNum - 1);
}

/// t = inv(N2) * H * N1 in the order of operations of denormalizeTForm, then scaled to a last value of 1.
void VektCGEstTForm::emitDenormalization(const FitLocals& v)
{
    const Expr oneDivS2 = createLocal("oneDivS2", mTc);
    const Expr s1DivS2 = createLocal("s1DivS2", mTc);
    const Expr weight = createLocal("weight", mTc);
    const Expr h = v.h;
    const Expr t = tformCompact;
    const Expr c1a = v.cents1[0];
    const Expr c1b = v.cents1[1];
    const Expr c2a = v.cents2[0];
    const Expr c2b = v.cents2[1];
    Assign(v.j, v.bestCol * colNum);
    {
        ForBlock perValue(*this, v.i, colNum);
        Assign(h[v.i], v.RV[v.j]);
        increment(v.j);
    }
    append("Undo the normalizations.");
    Assign(oneDivS2, 1.0 / v.scale2);
    Assign(s1DivS2, v.scale1 * oneDivS2);
    if (sampleSize == 2) {
        Assign(t[0], s1DivS2 * h[0]);
        Assign(t[1], s1DivS2 * h[1]);
        Assign(t[2], ((h[4] * c2a - t[0] * c1a) - t[1] * c1b) + oneDivS2 * h[2]);
        Assign(t[3], ((h[4] * c2b - t[0] * c1b) + t[1] * c1a) + oneDivS2 * h[3]);
        Assign(t[4], h[4]);
    } else if (sampleSize == 3) {
        Assign(t[0], s1DivS2 * h[0]);
        Assign(t[1], s1DivS2 * h[1]);
        Assign(t[2], ((c2a * h[6] - c1a * t[0]) - t[1] * c1b) + oneDivS2 * h[2]);
        Assign(t[3], s1DivS2 * h[3]);
        Assign(t[4], s1DivS2 * h[4]);
        Assign(t[5], ((c2b * h[6] - c1a * t[3]) - t[4] * c1b) + oneDivS2 * h[5]);
        Assign(t[6], h[6]);
    } else {
        Assign(t[6], v.scale1 * h[6]);
        Assign(t[7], v.scale1 * h[7]);
        Assign(t[8], h[8] - (t[6] * c1a + t[7] * c1b));
        Assign(t[0], s1DivS2 * h[0]);
        Assign(t[1], s1DivS2 * h[1]);
        Assign(t[3], s1DivS2 * h[3]);
        Assign(t[4], s1DivS2 * h[4]);
        Assign(t[2], ((t[8] * c2a - t[0] * c1a) - t[1] * c1b) + oneDivS2 * h[2]);
        Assign(t[5], ((t[8] * c2b - t[3] * c1a) - t[4] * c1b) + oneDivS2 * h[5]);
        Assign(t[0], t[6] * c2a + t[0]);
        Assign(t[1], t[7] * c2a + t[1]);
        Assign(t[3], t[6] * c2b + t[3]);
        Assign(t[4], t[7] * c2b + t[4]);
    }
    append("Scale to a last value of 1; without one there is no transformation.");
    Assign(v.j, colNum - 1);
    IfBlock hasLast(*this, t[v.j] != 0);
    Assign(weight, 1.0 / t[v.j]);
    {
        ForBlock perValue(*this, v.i, colNum - 1);
        Assign(t[v.i], t[v.i] * weight);
    }
    Assign(t[colNum - 1], 1);
    hasLast.otherwise();
    Assign(v.isOK, 0);
}
