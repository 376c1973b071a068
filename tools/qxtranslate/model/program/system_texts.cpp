#include "tools/qxtranslate/model/program/system_texts.h"

namespace qx {

namespace {

struct Source {
    std::vector<std::string> functions;  // without the A or W that most end in
    std::string consequence;
};

std::string BoxesOf(const std::string& library, const std::string& option) {
    return "boxes of " + library + " belong to that library: harvest " + library +
           " together with the program" + option + ", and they are translated with it";
}
std::string WithModule(const std::string& library) {
    return " and give qxtranslate run the option --module " + library;
}

const std::vector<Source>& Sources() {
    static const std::vector<Source> kSources = {
        {{"ChooseColor", "ChooseFont", "FindText", "GetOpenFileName", "GetSaveFileName",
          "PageSetupDlg", "PrintDlg", "PrintDlgEx", "ReplaceText"},
         BoxesOf("comdlg32.dll", "")},
        {{"PickIconDlg", "RunFileDlg", "SHBrowseForFolder", "SHFileOperation", "ShellAbout"},
         BoxesOf("shell32.dll", WithModule("shell32.dll"))},
        {{"PropertySheet", "TaskDialog", "TaskDialogIndirect"},
         "its pages are translated when it is started by qxtranslate run; the buttons around them "
         "and other " +
             BoxesOf("comctl32.dll", "")},
        {{"WNetConnectionDialog", "WNetConnectionDialog1", "WNetDisconnectDialog"},
         BoxesOf("mpr.dll", WithModule("mpr.dll"))},
        {{"DefMDIChildProc"},
         "the window menu of a document's window is user32.dll's own, which must not be patched: "
         "its texts stay as they are"},
        {{"GetCurrencyFormat", "GetDateFormat", "GetNumberFormat", "GetTimeFormat",
          "StrFormatByteSize", "StrFormatByteSize64", "StrFormatKBSize"},
         "numbers, dates and times have the form that the system's language gives them"},
    };
    return kSources;
}

}  // namespace

std::vector<std::string> TellSystemTexts(const std::function<bool(const std::string&)>& reaches) {
    std::vector<std::string> sentences;
    for (const Source& source : Sources()) {
        std::string found;
        for (const std::string& function : source.functions) {
            for (const char* suffix : {"", "A", "W"}) {
                if (reaches(function + suffix))
                    found += (found.empty() ? "" : ", ") + function + suffix;
            }
        }
        if (!found.empty())
            sentences.push_back("It calls " + found + ": " + source.consequence + ".");
    }
    return sentences;
}

}  // namespace qx
