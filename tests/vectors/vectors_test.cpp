// Replays the vectors of kernels, fits and steps: inputs with results that are exact to the bit.
#include "vector_files.h"

namespace {

Replay formatOf(const Json& first)
{
    if (first.contains("steps")) return replayStep;
    if (first.contains("pts1")) return replayFit;
    if (first.contains("economy")) return replayQr;
    if (first.contains("wantVectors")) return replaySvd;
    return nullptr;
}

}  // namespace

int main(int argc, char** argv)
{
    return runVectorFiles(argc, argv, false, formatOf);
}
