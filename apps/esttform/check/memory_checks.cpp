// Memory: what a block reads and writes besides its signals and work vectors. Guard zones of the host tell of writes; inputs
// of the host's own, with no memory around them, end the process at any access beyond them.
#include "check/checks.h"
#include "check/finding.h"
#include "check/guarded_array.h"
#include "check/life.h"
#include "check/point_sets.h"

#include <fmt/format.h>

namespace esttform::check {

std::string checkGuardZones(const CheckInput& input)
{
    Random random(input.seed);
    int num = 0;
    for (const Case& c : variety()) {
        input.note(c.text());
        Life life(input.path, c);
        for (int pairNum = c.isVariable ? c.sampleSize() : c.ptsNum; pairNum <= c.ptsNum; ++pairNum)
            for (const bool isOdd : {false, true}) {
                auto pairs = isOdd ? oddPairs(pairNum, random)
                                   : matchedPairs(randomMatrix(c.transformType(), random), pairNum, 3, random);
                fitInto(c.pointsType, pairs);
                life.step(pairs, static_cast<unsigned>(num++));
            }
        life.end();
    }
    return fmt::format("{} steps: no write outside, inputs and mask beyond the pairs unchanged", num);
}

std::string checkInputPages(const CheckInput& input)
{
    Random random(input.seed);
    int num = 0;
    for (const Case& c : variety())
        for (const bool isAtEnd : {false, true}) {
            input.note(fmt::format("{}; inputs {} memory that is not there", c.text(), isAtEnd ? "end before" : "begin after"));
            const std::size_t byteNum = 2 * static_cast<std::size_t>(c.ptsNum) * sizeOf(c.pointsType);
            GuardedArray arrays[2] = {{byteNum, isAtEnd}, {byteNum, isAtEnd}};
            blockhost::BlockSetup setup = setupOf(input.path, c);
            for (std::size_t port = 0; port < 2; ++port)
                setup.inputs[port].data = arrays[port].data();
            Life life(c, std::move(setup));
            for (int i = 0; i < 3; ++i, ++num) {
                auto pairs = matchedPairs(randomMatrix(c.transformType(), random), c.ptsNum, 3, random);
                fitInto(c.pointsType, pairs);
                for (const int port : {0, 1}) {
                    arrays[port].setWritable(true);
                    app::packPoints(pairs, port, c.pointsType, c.layout(), arrays[port].data());
                    arrays[port].setWritable(false);
                }
                expectPromise(life.step(pairs, static_cast<unsigned>(i)), c, pairs);
            }
            life.end();
        }
    return fmt::format("{} steps: no access beyond the inputs, no write to them", num);
}

}  // namespace esttform::check
