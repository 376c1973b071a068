// Which modules of the program are translated: its own, those from its folder, those that were
// ordered; also the ones that come later.
#ifndef QXAGENT_MODULES_MODULES_H
#define QXAGENT_MODULES_MODULES_H

namespace qx {

// `ordered` is a list of file names, one behind the other, ended by an empty one.
void StartModules(const wchar_t* ordered);

}  // namespace qx

#endif
