// Files of the command line. Failures are BadInput with the file's name.
#ifndef QXTRANSLATE_PLATFORM_FILES_H
#define QXTRANSLATE_PLATFORM_FILES_H

#include "tools/qxtranslate/model/text/bad_input.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qx {

std::vector<uint8_t> ReadBytes(const std::string& path);
std::string ReadText(const std::string& path);

// Writes beside the target and renames, so that the target is the old file or the new one. An empty
// path is the standard output.
void WriteResult(const std::string& path, std::string_view bytes);

// The name behind the last separator.
std::string FileName(const std::string& path);

// Calls `act` and puts the file's name before the sentence that it fails with.
template <class Act>
auto Naming(const std::string& path, Act act) {
    try {
        return act();
    } catch (const BadInput& failure) {
        throw BadInput(path + ": " + failure.what());
    }
}

}  // namespace qx

#endif
