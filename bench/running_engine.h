// A block that runs in the stand-in host, and its engine, for benchmarks that call the engine and its parts directly.
#pragma once

#include <algorithm>
#include <memory>
#include <type_traits>

#include "bench_matches.h"
#include "block.h"
#include "block_instance.h"
#include "szelesttform_engine.h"

namespace bench {

/// Code of a precision in names.
template <typename T>
constexpr const char* codeOf()
{
    return std::is_same_v<T, double> ? "D" : "R";
}

template <typename T>
constexpr esttform::DataType dataTypeOf()
{
    return std::is_same_v<T, double> ? esttform::DataType::Double : esttform::DataType::Single;
}

/// The plug-in, started, with points of type T in columns.
template <typename T>
class RunningEngine {
public:
    RunningEngine(const esttform::Settings& settings, const Matches& matches)
    {
        const esttform::Params params = esttform::toParams(settings);
        blockhost::Signal points;
        points.dims = blockhost::Dims{2, matches.ptsNum()};
        points.typeId = static_cast<int>(settings.pointsType);
        points.mode = sysobj::DIMS_MODE_FIXED;
        blockhost::BlockSetup setup;
        setup.libraryPath = BLOCK_PATH;
        setup.params.assign(params.begin(), params.end());
        setup.inputs = {points, points};
        mBlock = std::make_unique<blockhost::Block>(std::move(setup));
        mBlock->open();

        const auto toT = [](double value) { return static_cast<T>(value); };
        std::transform(matches.pts1.begin(), matches.pts1.end(), static_cast<T*>(mBlock->inputData(0)), toT);
        std::transform(matches.pts2.begin(), matches.pts2.end(), static_cast<T*>(mBlock->inputData(1)), toT);
        engine().ptsNum = matches.ptsNum();
    }

    estTForm<T, T>& engine()
    {
        auto* const S = const_cast<sysobj::SysObjAdaptorSFun*>(&mBlock->instance());
        S->phase = blockhost::OUTPUTS;                   // the host takes direct calls for calls within mdlOutputs
        return *static_cast<estTForm<T, T>*>(static_cast<baseEstTForm*>(S->userData));
    }

private:
    std::unique_ptr<blockhost::Block> mBlock;
};

}  // namespace bench
