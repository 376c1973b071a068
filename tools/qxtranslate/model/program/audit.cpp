#include "tools/qxtranslate/model/program/audit.h"

#include "tools/qxtranslate/model/pe/imports.h"
#include "tools/qxtranslate/model/pe/resources.h"
#include "tools/qxtranslate/model/program/system_texts.h"
#include "tools/qxtranslate/model/text/unicode.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>

namespace qx {

namespace {

constexpr const char* kIntercepted[] = {
    "LoadStringA",
    "LoadStringW",
    "LoadMenuIndirectA",
    "LoadMenuA",
    "LoadMenuW",
    "LoadResource",
    "FindResourceA",
    "FindResourceExA",
    "FindResourceW",
    "FindResourceExW",
    "LockResource",
    "FreeResource",
    "SizeofResource",
    "CreateDialogParamA",
    "CreateDialogParamW",
    "DialogBoxParamA",
    "DialogBoxParamW",
    "MessageBoxIndirectA",
    "MessageBoxA",
    "MessageBoxExA",
    "DialogBoxIndirectParamA",
    "DialogBoxIndirectParamW",
    "CreateDialogIndirectParamA",
    "CreateDialogIndirectParamW",
};
static_assert(std::size(kIntercepted) == 24);

// Functions of the interface that are not intercepted, and what that means.
constexpr struct {
    const char* function;
    const char* sentence;
} kBeside[] = {
    {"MessageBoxW",
     "It calls MessageBoxW, which is not intercepted: texts written into the program's code stay "
     "as they are in its message boxes (texts loaded before by LoadStringA or LoadStringW arrive "
     "translated; qxtranslate run --wide-boxes takes these boxes too)."},
    {"MessageBoxIndirectW",
     "It calls MessageBoxIndirectW, which is not intercepted: texts that it names by number or "
     "writes into its code stay as they are (qxtranslate run --wide-boxes takes these boxes too)."},
    {"MessageBoxExW",
     "It calls MessageBoxExW, which is not intercepted (qxtranslate run --wide-boxes takes these "
     "boxes too)."},
    {"LoadMenuIndirectW",
     "It calls LoadMenuIndirectW, which is not intercepted: menus made by it stay as they are, but "
     "for programs started by qxtranslate run."},
    {"FormatMessageW",
     "It calls FormatMessageW: texts of a message table are no strings and stay as they are; "
     "formats loaded as strings are translated."},
    {"AppendMenuW",
     "It calls AppendMenuW: menu texts written into its code stay as they are; texts loaded as "
     "strings are translated."},
    {"InsertMenuW",
     "It calls InsertMenuW: menu texts written into its code stay as they are; texts loaded as "
     "strings are translated."},
    {"GetProcAddress",
     "It calls GetProcAddress: boxes of the system that it reaches that way by a number, such as "
     "the Run box of shell32.dll, are not seen here; they are translated when their library is "
     "harvested with the program and given to qxtranslate run with --module."},
};

// Functions of the system that have a number in place of a name.
constexpr struct {
    const char* library;
    unsigned ordinal;
    const char* function;
} kNumbered[] = {
    {"shell32.dll", 61, "RunFileDlg"},
    {"shell32.dll", 62, "PickIconDlg"},
};

constexpr const char* kDelayed = "delay-loaded";
constexpr const char* kByName = "only by GetProcAddress";

bool IsSame(const std::string& a, const char* b) {
    return LowerAscii(a) == LowerAscii(b);
}

class Auditor {
public:
    explicit Auditor(Bytes file)
        : m_image(file), m_imports(ReadImports(m_image)), m_names(CollectNames(m_image)) {}

    Audit Run() {
        Ways();
        Widths();
        Strings();
        Templates();
        for (auto& row : kBeside) {
            if (Imports(row.function)) Tell(row.sentence);
        }
        auto reaches = [this](const std::string& function) { return Reaches(function); };
        for (const std::string& sentence : TellSystemTexts(reaches)) Tell(sentence);
        Libraries();
        return std::move(m_audit);
    }

private:
    void Tell(const std::string& sentence) { m_audit.sentences.push_back(sentence); }

    const Import* Imports(const std::string& function) const {
        auto found = std::find_if(m_imports.begin(), m_imports.end(),
                                  [&](auto& i) { return i.function == function; });
        return found == m_imports.end() ? nullptr : &*found;
    }

    // By its name, by its number, or by a look-up while the program runs.
    bool Reaches(const std::string& function) const {
        return Imports(function) || ImportsNumber(function) || m_names.count(function) != 0;
    }

    bool ImportsNumber(const std::string& function) const {
        return std::any_of(std::begin(kNumbered), std::end(kNumbered), [&](auto& numbered) {
            return function == numbered.function &&
                   std::any_of(m_imports.begin(), m_imports.end(), [&](auto& import) {
                       return import.function.empty() && import.ordinal == numbered.ordinal &&
                              IsSame(import.library, numbered.library);
                   });
        });
    }

    // Nothing when the module does not get at the function.
    std::optional<std::string> WayTo(const char* function) const {
        if (const Import* import = Imports(function))
            return import->isDelayed ? kDelayed : "directly";
        if (!m_names.count(function)) return std::nullopt;
        // Some linkers leave no table of what is delay-loaded, only its names.
        return Imports("ResolveDelayLoadedAPI") ? kDelayed : kByName;
    }

    void Ways() {
        std::map<std::string, std::string> late;
        for (const char* function : kIntercepted) {
            auto way = WayTo(function);
            if (!way) continue;
            m_audit.functions.push_back({function, *way});
            m_used.insert(function);
            std::string& list = late[*way];
            list += (list.empty() ? "" : ", ") + std::string(function);
        }
        if (late.count(kDelayed))
            Tell("Delay-loaded: " + late[kDelayed] +
                 ". A slot holds no real address before the first call, so the interception, made "
                 "at the start, does not reach these, but for programs started by qxtranslate "
                 "run.");
        if (late.count(kByName))
            Tell("Looked up by name while it runs: " + late[kByName] +
                 ". Such calls are out of reach, but for programs started by qxtranslate run.");
    }

    void Widths() {
        if (!m_image.Is64Bit())
            Tell(
                "It is a 32-bit program: its texts can be harvested, but only 64-bit programs can "
                "be translated while they run.");
        for (const Import& import : m_imports) {
            bool isInterface =
                IsSame(import.library, "user32.dll") || IsSame(import.library, "kernel32.dll");
            if (!isInterface || !import.function.empty()) continue;
            m_audit.functions.push_back(
                {import.library + " ordinal " + std::to_string(import.ordinal), "by ordinal"});
            Tell(import.library + " is imported by ordinal (" + std::to_string(import.ordinal) +
                 "): its address is intercepted like any other, but which function it is depends "
                 "on the system.");
        }
    }

    void Strings() {
        if (!Uses("LoadStringA") && !Uses("LoadStringW")) {
            if (Holds(kTypeStrings))
                Tell(
                    "It has string tables and imports neither LoadStringA nor LoadStringW: its "
                    "strings are out of reach unless another translated module loads them.");
            return;
        }
        if (Uses("LoadStringW"))
            Tell(
                "It calls LoadStringW: the length it gets counts the terminator, a request for a "
                "pointer is not translated, and the text is found without its place (programs "
                "started by qxtranslate run get the right length and the pointer).");
    }

    void Templates() {
        bool menus = Uses("LoadMenuA") || Uses("LoadMenuW") || Uses("LoadMenuIndirectA");
        if (Holds(kTypeMenu) && !menus)
            Tell(
                "It has menus and loads none by LoadMenuA or LoadMenuW: those that a window class "
                "or a dialog names are loaded inside the system and stay as they are, but for "
                "programs started by qxtranslate run.");
        bool dialogs = std::any_of(m_used.begin(), m_used.end(), [](const std::string& f) {
            return f.starts_with("CreateDialog") || f.starts_with("DialogBox") ||
                   f.starts_with("FindResource");
        });
        if (Holds(kTypeDialog) && !dialogs)
            Tell(
                "It has dialogs and imports none of the functions that open them: they are out of "
                "reach unless another translated module opens them.");
        if (Uses("LoadResource") && Holds(kTypeMenu))
            Tell(
                "It calls LoadResource: a menu found and loaded that way arrives as nothing, but "
                "for programs started by qxtranslate run.");
        if (Uses("FreeResource"))
            Tell(
                "It calls FreeResource: freeing nothing ends the program, but not those started "
                "by qxtranslate run.");
    }

    void Libraries() {
        for (const std::string& library : NamedLibraries(m_image))
            TellLibrary("It names " + library + ": when it loads that library while it runs, ",
                        library);
        if (Holds(kTypeMenu) || Holds(kTypeDialog) || Holds(kTypeStrings)) return;
        for (const std::string& library : ImportedLibraries(m_imports))
            TellLibrary("It has no texts of its own and calls " + library + ": ", library);
    }

    void TellLibrary(const std::string& why, const std::string& library) {
        Tell(why + "audit it too, harvest " + library +
             " together with the program and give qxtranslate run the option --module " + library +
             ", and its texts are translated too.");
    }

    bool Uses(const char* function) const { return m_used.count(function) != 0; }

    bool Holds(uint32_t type) {
        if (!m_resources) m_resources = ReadResources(m_image);
        return std::any_of(m_resources->begin(), m_resources->end(),
                           [&](const Resource& r) { return r.Is(type); });
    }

    PeImage m_image;
    std::vector<Import> m_imports;
    std::unordered_set<std::string> m_names;
    std::optional<std::vector<Resource>> m_resources;
    std::set<std::string> m_used;
    Audit m_audit;
};

}  // namespace

Audit AuditModule(Bytes file) {
    return Auditor(file).Run();
}

}  // namespace qx
