// The geometry file that stands beside a dictionary: how dialogs and their controls grow and move.
#ifndef QXTRANSLATE_MODEL_DICTIONARY_GEOMETRY_H
#define QXTRANSLATE_MODEL_DICTIONARY_GEOMETRY_H

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qx {

// What is added, in dialog units.
using SizeChange = std::array<int, 2>;  // to the width and the height
using EdgeChange = std::array<int, 4>;  // to the left, top, right and bottom edges

struct DialogGeometry {
    std::string module;    // in bytes of the code page, like the name
    std::string resource;  // the dialog's name, or its number
    std::optional<SizeChange> size;
    std::map<unsigned, EdgeChange> controls;  // by their indexes from 0
    unsigned line = 0;

    bool operator==(const DialogGeometry& other) const {
        return module == other.module && resource == other.resource && size == other.size &&
               controls == other.controls;
    }
};

struct GeometryProblem {
    unsigned line;
    std::string what;
};

struct Geometry {
    std::vector<DialogGeometry> dialogs;
    std::vector<GeometryProblem> problems;  // lines that change nothing
};

// What the program sees. A bare empty line ends the file.
Geometry ReadGeometry(std::string_view file);
// Windows line ends.
std::string WriteGeometry(const std::vector<DialogGeometry>& dialogs);

}  // namespace qx

#endif
