// The generated draw of a minimal sample: at random without repetition, or by stepping every index.
#include "szelesttform_cg.h"

using namespace CG;
using namespace sysobj;

/// A sample that stays duplicate ends the search at once.
void VektCGEstTForm::emitDrawSample(const StepLocals& v)
{
    const Expr i = createLocal("i", DT_UINT32);
    const Expr lastIdx = cast(uint32T(), ptsNum) - 1;
    Assign(v.isContinue, 1);
    if (!isRandomSampling) {
        append("Next sample: every index one further, from the last pair to the first.");
        ForBlock perPair(*this, i, sampleSize);
        IfBlock isBeforeLast(*this, sampleIdx[i] < lastIdx);
        Assign(sampleIdx[i], sampleIdx[i] + 1);
        isBeforeLast.otherwise();
        Assign(sampleIdx[i], 0);
        return;
    }
    append("Random sample of distinct pairs, each drawn at most maxDuplicateTries times. A loop is left by its counter.");
    const Expr j = createLocal("j", DT_UINT32);
    const Expr k = createLocal("k", DT_UINT32);
    const Expr isDuplicate = createLocal("isDuplicate", DT_BOOLEAN);
    ForBlock perPair(*this, i, sampleSize);
    {
        ForBlock perTry(*this, j, maxDuplicateTries);
        Assign(sampleIdx[i], Expr(getTargetLibFcnCall("rand", uint32T())) % cast(uint32T(), ptsNum));
        Assign(isDuplicate, 0);
        {
            ForBlock perEarlier(*this, k, i);
            IfBlock isSame(*this, sampleIdx[k] == sampleIdx[i]);
            Assign(isDuplicate, 1);
            Assign(k, i);
        }
        IfBlock isDistinct(*this, !isDuplicate);
        Assign(j, maxDuplicateTries);
    }
    IfBlock isRefused(*this, isDuplicate);
    Assign(v.isContinue, 0);
    Assign(i, sampleSize);
}
