# Writes OUTPUT, a C++ source holding the bytes of INPUT as the bundled demo.
# A missing document gives an empty one, which the emulator reports on use.
set(content "")
if(EXISTS ${INPUT})
    file(READ ${INPUT} content HEX)
endif()
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${content}")
string(LENGTH "${content}" hexLength)
math(EXPR size "${hexLength} / 2")
file(WRITE ${OUTPUT}
"// Generated from demo/demo-panel.json; do not edit.
#include <string_view>

#include \"tools/sim/demo_config.h\"

namespace lumeth::sim {
namespace {
const char kDemo[] = {${bytes} '\\0'};
} // namespace

std::string_view BuiltInDemoDocument() { return std::string_view(kDemo, ${size}); }

} // namespace lumeth::sim
")
