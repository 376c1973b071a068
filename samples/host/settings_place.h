// The places in which settings can live:
//
//     ini:FILE         an ini file that a user may edit
//     HKCU\KEY         a registry key of the user's, made where there is none
//     HKLM\KEY         the same of the machine's
//     document:FILE    the storage "settings" in a document, beside its contents
//     text:FILE        one line of text
//     stream:FILE      the bytes of a stream
//
// The first three are trees of their own, and each change goes there. A text and a stream are forms
// of a whole tree, which is in memory until Keep.
#ifndef HOST_SETTINGS_PLACE_H
#define HOST_SETTINGS_PLACE_H

#include <qxcore/param.h>
#include <qxcore/reference.h>

#include <memory>
#include <string>
#include <vector>

// What a kind of place cannot hold as it is.
struct PlaceLimits {
    bool blobs = true;
    bool objects = true;
    bool bytes = true;  // numbers of one byte
    bool emptyTexts = true;
    bool lineTexts = false;       // texts are one line, without blanks at its end
    const char* notInTexts = "";  // characters that end a text
    size_t longestName = 255;
};

class SettingsPlace {
public:
    // Null when the text names no kind of place. A place that cannot be opened throws CXException.
    static std::unique_ptr<SettingsPlace> Open(std::string const& text);

    virtual ~SettingsPlace() = default;
    // Brings the tree into its file. The place ends with it.
    virtual void Keep() {}

    IParam* Tree() const { return m_tree.Get(); }
    // What of a tree the place would not give back, in words: "list\columns (a blob)".
    std::vector<std::string> CannotHold(IParam* tree) const;

protected:
    SettingsPlace(qx::Reference<IParam> tree, PlaceLimits const& limits)
        : m_limits(limits), m_tree(std::move(tree)) {}

private:
    PlaceLimits m_limits;
    qx::Reference<IParam> m_tree;
};

#endif
