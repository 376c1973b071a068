#include "support/common_templates.h"

template class std::basic_string<char>;
template class std::basic_string<wchar_t>;
template class std::vector<char>;
template class std::vector<int>;
template class std::vector<std::string>;
template class std::vector<unsigned char>;
