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

// Writes beside the target and renames, so that the target is the old file or the new one. An empty
// path is the standard output; a device or a pipe is written to as it is.
void WriteResult(const std::string& path, std::string_view bytes);

// Refuses a result that would take the place of what it is made from.
void RequireApart(const std::string& output, const std::vector<std::string>& inputs);

// The name behind the last separator.
std::string FileName(const std::string& path);

// What `parse` makes of the file's bytes; the file's name stands before the sentence that it fails
// with.
template <class Parse>
auto ParseFile(const std::string& path, Parse parse) {
    const std::vector<uint8_t> file = ReadBytes(path);
    try {
        return parse(file);
    } catch (const BadInput& failure) {
        throw BadInput(path + ": " + failure.what());
    }
}
template <class Parse>
auto ParseText(const std::string& path, Parse parse) {
    return ParseFile(path, [&](const std::vector<uint8_t>& file) {
        return parse(std::string_view(reinterpret_cast<const char*>(file.data()), file.size()));
    });
}

}  // namespace qx

#endif
