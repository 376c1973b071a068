#include "tests/tools/uses.h"

#include "tools/qxtranslate/model/dictionary/compile.h"
#include "tools/qxtranslate/model/dictionary/geometry.h"
#include "tools/qxtranslate/model/program/audit.h"
#include "tools/qxtranslate/model/program/harvest.h"
#include "tools/qxtranslate/model/text/bad_input.h"
#include "tools/qxtranslate/model/translation/checks.h"

#include <cstdlib>

namespace {

void UseProgram(const std::vector<uint8_t>& file) {
    unsigned lost = 0;
    qx::ToPo(qx::ReadTexts(file, "a.exe", 0x409, 0x407).texts, "a.exe", &lost);
    qx::AuditModule(file);
}

void UseTranslations(const std::string& text, const qx::CodePage& page) {
    qx::PoFile po = qx::ReadPo(text);
    if (qx::WritePo(qx::ReadPo(qx::WritePo(po))) != qx::WritePo(po)) std::abort();
    qx::Check(po, &page);
    qx::WriteDictionary(qx::Compile(po, page).dictionary);
}

void UseDictionary(const std::string& text, const qx::CodePage& page) {
    qx::WriteGeometry(qx::ReadGeometry(text).dialogs);
    qx::WritePo(qx::Decompile(qx::ReadDictionary(text, page), page));
}

}  // namespace

bool Use(FileKind kind, const std::vector<uint8_t>& file, const qx::CodePage& page) {
    std::string text(file.begin(), file.end());
    try {
        switch (kind) {
            case FileKind::Program:
                UseProgram(file);
                break;
            case FileKind::Translations:
                UseTranslations(text, page);
                break;
            case FileKind::Dictionary:
                UseDictionary(text, page);
        }
    } catch (const qx::BadInput&) {
        return false;
    }
    return true;
}
