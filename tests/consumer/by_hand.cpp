// Names few of the allocation functions itself and leaves the others to the standard library's
// code.
#include <qxcore/string.h>

#include <string>
#include <vector>

int main() {
    std::vector<std::string> texts;
    for (int i = 0; i < 100; ++i) texts.push_back(std::string(100, 'x'));
    return CXString(texts.back().c_str()).GetLength() == 100 ? 0 : 1;
}
