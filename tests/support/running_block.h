// The plug-in, running in the stand-in host, with a look at its engine.
// Needs the compile definition BLOCK_PATH.
#pragma once

#include <memory>

#include "block.h"
#include "block_instance.h"
#include "szelesttform_engine.h"
#include "szelesttform_params.h"
#include "json_numbers.h"

/// Calls fcn(Ti(), Tc()) for the engine of a pair of data types.
template <typename Fcn>
void withEngineTypes(int inType, int tformType, Fcn fcn)
{
    const auto withTc = [&](auto tc) {
        switch (inType) {
        case sysobj::DT_INT8: return fcn(std::int8_t(), tc);
        case sysobj::DT_UINT8: return fcn(std::uint8_t(), tc);
        case sysobj::DT_INT16: return fcn(std::int16_t(), tc);
        case sysobj::DT_UINT16: return fcn(std::uint16_t(), tc);
        case sysobj::DT_INT32: return fcn(std::int32_t(), tc);
        case sysobj::DT_UINT32: return fcn(std::uint32_t(), tc);
        default: return fcn(tc, tc);
        }
    };
    tformType == sysobj::DT_DOUBLE ? withTc(double()) : withTc(float());
}

/// The plug-in with dialog values, one type and one size for both point inputs, started.
class RunningBlock {
public:
    RunningBlock(const std::vector<double>& params, int inType, int maxPtsNum, bool isVariable)
    {
        mIsInRows = params.at(POINTS_IN_ROWS) != 0.0;
        blockhost::Signal points;
        points.dims = size(maxPtsNum);
        points.typeId = inType;
        points.mode = isVariable ? sysobj::DIMS_MODE_VARIABLE : sysobj::DIMS_MODE_FIXED;
        blockhost::BlockSetup setup;
        setup.libraryPath = BLOCK_PATH;
        setup.params = params;
        setup.inputs = {points, points};
        mBlock = std::make_unique<blockhost::Block>(std::move(setup));
        mBlock->open();
    }

    blockhost::Block& block() { return *mBlock; }
    bool isInRows() const { return mIsInRows; }
    blockhost::Dims size(int ptsNum) const
    {
        return mIsInRows ? blockhost::Dims{ptsNum, 2} : blockhost::Dims{2, ptsNum};
    }

    /// The instance for direct calls of the engine, which the host takes for calls within mdlOutputs.
    sysobj::SysObjAdaptorSFun* instance()
    {
        auto* const S = const_cast<sysobj::SysObjAdaptorSFun*>(&mBlock->instance());
        S->phase = blockhost::OUTPUTS;
        return S;
    }

    template <typename Ti, typename Tc>
    estTForm<Ti, Tc>& engine()
    {
        auto* const base = static_cast<baseEstTForm*>(instance()->userData);
        return *static_cast<estTForm<Ti, Tc>*>(base);
    }

    /// Writes [x, y] pairs to an input in the block's layout.
    template <typename Ti>
    void writePoints(int port, const Json& points)
    {
        Ti* const data = static_cast<Ti*>(mBlock->inputData(port));
        const std::size_t num = points.size();
        for (std::size_t i = 0; i < num; ++i) {
            data[mIsInRows ? i : 2 * i] = static_cast<Ti>(inputValue(points[i].at(0)));
            data[mIsInRows ? num + i : 2 * i + 1] = static_cast<Ti>(inputValue(points[i].at(1)));
        }
    }

private:
    std::unique_ptr<blockhost::Block> mBlock;
    bool mIsInRows;
};
