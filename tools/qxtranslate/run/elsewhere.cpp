// What needs Windows, as it is on other systems.
#include "tools/qxtranslate/model/text/bad_input.h"
#include "tools/qxtranslate/run/program.h"

namespace qx {

void RunProgram(const RunOptions&) {
    throw BadInput(
        "run starts Windows programs, and only qxtranslate.exe does that: on Windows, or under "
        "Wine");
}

}  // namespace qx
