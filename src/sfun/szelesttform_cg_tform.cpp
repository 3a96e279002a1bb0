// The generated way from a compact transformation to the elements of TForm.
#include "szelesttform_cg.h"
#include "szelesttform_tform.h"

using namespace CG;
using namespace sysobj;

/// Points in columns have regular forms: the affine and projective matrix is the compact one read row by row.
void VektCGEstTForm::emitWriteTForm(Expr compact)
{
    if (!mIsInRows && sampleSize == 2) {
        Assign(tform[0], compact[0]);
        Assign(tform[1], -compact[1]);
        Assign(tform[2], -tform[1]);
        Assign(tform[3], tform[0]);
        Assign(tform[4], compact[2]);
        Assign(tform[5], compact[3]);
        return;
    }
    if (!mIsInRows) {
        ScopeBlock scope(*this);
        const Expr i = createLocal("i", DT_UINT32);
        const Expr j = createLocal("j", DT_UINT32);
        const Expr k = createLocal("k", DT_UINT32);
        const Expr m = createLocal("m", DT_UINT32);
        Assign(k, 0);
        ForBlock perColumn(*this, i, 3);
        Assign(m, i);
        ForBlock perRow(*this, j, tformWidth(sampleSize) / 3);
        Assign(tform[k], compact[m]);
        Assign(m, m + 3);
        increment(k);
        return;
    }
    const TFormElement* const elements = TFORM_ELEMENTS[sampleSize - 2][1];
    for (std::int32_t i = 0; i < tformWidth(sampleSize); ++i) {
        const Expr value = compact[elements[i].compactIdx];
        Assign(tform[i], elements[i].isNegated ? -value : value);
    }
}
