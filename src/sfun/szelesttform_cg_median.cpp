// The generated order statistic of the median method: quickselect in DW_PTSNORM1 (Hoare, Algorithm 65, CACM 1961).
#include "szelesttform_cg.h"

using namespace CG;
using namespace sysobj;

/// Reorders the first n values of DW_PTSNORM1; element n holds the pivot.
///
/// @param n, rank  uint32 variables
/// @return the element of that rank, counted from 0
VektCGEstTForm::Expr VektCGEstTForm::emitOrderStatistic(Expr n, Expr rank)
{
    append("Order statistic: pivots are medians of three, the present one is kept behind the values.");
    const Expr left = createLocal("left", DT_INT32);
    const Expr right = createLocal("right", DT_INT32);
    const Expr rightMinus1 = createLocal("rightMinus1", DT_INT32);
    const Expr ii = createLocal("ii", DT_INT32);
    const Expr jj = createLocal("jj", DT_INT32);
    const Expr mid = createLocal("mid", DT_INT32);
    const Expr isContinue = createLocal("isContinue", DT_BOOLEAN);
    const Expr tmp = createLocal("tmp", mTc);
    const Expr a = ptsNorm1;
    const Expr last = cast(int32T(), n) - 1;
    const Expr pivot = a[n];
    const Expr k = cast(int32T(), rank);
    const auto swap = [&](Expr x, Expr y) {
        Assign(tmp, a[x]);
        Assign(a[x], a[y]);
        Assign(a[y], tmp);
    };
    const auto order = [&](Expr x, Expr y) {
        IfBlock isUnordered(*this, a[x] > a[y]);
        swap(x, y);
    };

    Assign(left, 0);
    Assign(right, last);
    {
        WhileBlock isLong(*this, right > left + 1);
        Assign(mid, (left + right) >> 1);
        order(left, mid);
        order(left, right);
        order(mid, right);
        Assign(rightMinus1, right - 1);
        swap(mid, rightMinus1);
        Assign(pivot, a[rightMinus1]);
        Assign(ii, left);
        Assign(jj, rightMinus1);
        Assign(isContinue, 1);
        {
            WhileBlock partition(*this, isContinue);
            increment(ii);
            {
                WhileBlock isBelow(*this, a[ii] < pivot);
                increment(ii);
            }
            {
                IfBlock isBeyond(*this, ii > last);
                Assign(ii, last);
            }
            decrement(jj);
            {
                WhileBlock isAbove(*this, a[jj] > pivot);
                decrement(jj);
            }
            {
                IfBlock isBeyond(*this, jj < 0);
                Assign(jj, 0);
            }
            IfBlock hasMet(*this, ii >= jj);
            Assign(isContinue, 0);
            hasMet.otherwise();
            swap(ii, jj);
        }
        swap(ii, rightMinus1);
        {
            IfBlock isRight(*this, ii >= k);
            Assign(right, ii - 1);
        }
        IfBlock isLeft(*this, ii <= k);
        Assign(left, ii + 1);
    }
    {
        IfBlock isPair(*this, right - left == 1 && a[left] > a[right]);
        swap(left, right);
    }
    return a[rank];
}
