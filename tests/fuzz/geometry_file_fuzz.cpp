// Broken geometry files: the records are those that a walk over the same text, read as a parameter
// tree, finds.
#include "fuzz/fuzz_driver.h"
#include "translate/low_memory.h"

#include <qxcore.h>

#include <array>
#include <cstring>
#include <map>

namespace {

using qx::Reference;

constexpr size_t kRoom = 1 << 16;

constexpr const char* kPieces[] = {"[\\view.dll\\Dialogs\\#130]\r\n",
                                   "[\\View.dll\\Dialogs\\SETTINGS]\n",
                                   "[\\view.dll\\Dialogs\\settings\\deeper]\n",
                                   "[\\view.dll\\Menus\\#1]\n",
                                   "[\\other.dll]\n",
                                   "[\\other.dll\\dialogs\\#0x82]|",
                                   "[\\\\Dialogs\\]|",
                                   "Dialog Size=z10,-20\r\n",
                                   "Dialog Size=t1,2,3,4|",
                                   "dialog size=Z1.5,2\n",
                                   "0=t1,2,3,4\r\n",
                                   "1=t0x10,2,3,-4|",
                                   "-1=t1,1,1,1\n",
                                   "OK=t9,9,9,9\n",
                                   "2=p1,2\n",
                                   "3=T1,2,3,4\n",
                                   "4=t1,2,3\n",
                                   "bare\n",
                                   " ; note\n",
                                   "\n",
                                   "|",
                                   "=",
                                   "[",
                                   "#include x\n",
                                   "\\"};

std::string RandomFile(Random& random) {
    std::string text;
    for (unsigned n = random.Below(40); n > 0; --n)
        text += kPieces[random.Below(std::size(kPieces))];
    if (random.Below(30) == 0)
        text.insert(random.Below(unsigned(text.size()) + 1), 8150 + random.Below(100), 'x');
    if (random.Below(2)) Mutate(text, random);
    return text;
}

struct Record {
    int width = 0, height = 0;
    std::map<unsigned, std::array<int, 4>> controls;
    bool operator==(const Record&) const = default;
};

using Records = std::map<int, Record>;

template <class Visit>
void Each(CTEnum<const char*>* given, Visit visit) {
    Reference<CTEnum<const char*>> names(given);
    const char* name;
    while (names->Next(1, &name, nullptr)) visit(std::string(name));
}

Record RecordOf(IParam* dialog) {
    Record record;
    Each(dialog->EnumValues(), [&](const std::string& name) {
        CQXVariant value;
        if (!dialog->GetValue(name.c_str(), &value)) return;
        if (!_stricmp(name.c_str(), "Dialog Size") && value.type == QXVT_SIZE) {
            record.width = value.value.size.cx;
            record.height = value.value.size.cy;
        }
        const tagRECT& edges = value.value.rect;
        if (value.type == QXVT_RECT) {
            record.controls[static_cast<unsigned>(atoi(name.c_str()))] = {
                edges.left, edges.top, edges.right, edges.bottom};
        }
    });
    return record;
}

void Collect(Records& records, IParam* module, const std::string& moduleName) {
    Reference<IParam> dialogs(module->OpenSubParam("Dialogs", 0));
    if (!dialogs) return;
    Each(dialogs->EnumSubParams(), [&](const std::string& name) {
        Reference<IParam> dialog(dialogs->OpenSubParam(name.c_str(), 0));
        if (!dialog) return;
        std::string key = moduleName + "#1" + (name[0] == '#' ? "" : "#") + name + "\xFD\xFD";
        records[HashResourceKey(key.c_str())] = RecordOf(dialog.Get());
    });
}

// Nothing of a file that cannot be read to its end.
Records ExpectedRecords(const char* path) {
    Records records;
    Reference<IParam> tree(new_MemParam());
    try {
        Param_IniFile2Param(path, tree.Get());
        Each(tree->EnumSubParams(), [&](const std::string& name) {
            Reference<IParam> module(tree->OpenSubParam(name.c_str(), 0));
            if (module) Collect(records, module.Get(), name);
        });
    } catch (CXException&) {
    }
    return records;
}

Records RecordsOf(CWld& dictionary) {
    Records records;
    decltype(dictionary.m_DlgPos)::position at;
    while (int* hash = dictionary.m_DlgPos.GetNextKey(at)) {
        QXDlgPos* geometry = *dictionary.m_DlgPos.Find(*hash);
        Record& record = records[*hash];
        record.width = geometry->m_Size.cx;
        record.height = geometry->m_Size.cy;
        decltype(geometry->m_Rects)::position control;
        while (unsigned* index = geometry->m_Rects.GetNextKey(control)) {
            const CIRect& edges = *geometry->m_Rects.Find(*index);
            record.controls[*index] = {edges.left, edges.top, edges.right, edges.bottom};
        }
    }
    return records;
}

bool Round(Random& random) {
    static LowMemory memory(kRoom);
    std::string file = RandomFile(random);
    if (!memory.Data() || file.size() > kRoom) return false;
    memcpy(memory.Data(), file.data(), file.size());
    // A dictionary in memory finds its geometry in the same bytes.
    std::string path = memory.Path(file.size());
    CWld dictionary;
    try {
        if (dictionary.Add(path.c_str()) != 1) return false;
    } catch (CXException& failure) {
        if (failure.GetCode() != QXERR_INI_LINE) return false;
    }
    bool holds = RecordsOf(dictionary) == ExpectedRecords(path.c_str());
    DeleteObject(dictionary.m_hFont);
    return holds;
}

}  // namespace

int main(int argc, char** argv) {
    return fuzz::Main(argc, argv, 1000, Round);
}
