// What a file that cannot be used ends in: one sentence for the person who gave it.
#ifndef QXTRANSLATE_MODEL_TEXT_BAD_INPUT_H
#define QXTRANSLATE_MODEL_TEXT_BAD_INPUT_H

#include <stdexcept>

namespace qx {

class BadInput : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace qx

#endif
