#include "translate/resources/dialog_template.h"

#include "translate/dictionary/code_page.h"
#include "translate/resources/template_walk.h"
#include "translate/resources/word_at.h"

#include <qxcore/dictionary.h>

#include <cstdlib>
#include <memory>

namespace {

constexpr size_t kUsualTemplate = 2048;  // bytes; most fit without growing
constexpr size_t kUsualText = 256;

// A wide text of a template as the dictionary sees it: the low bytes of its characters.
class SourceText {
public:
    explicit SourceText(TemplatePart text) {
        size_t characters = text.size / 2;
        if (characters > kUsualText) {
            longText.reset(new char[characters]);
            narrow = longText.get();
        }
        uint8_t high = 0;
        for (size_t i = 0; i < characters; ++i) {
            narrow[i] = static_cast<char>(text.data[2 * i]);
            high |= text.data[2 * i + 1];
        }
        isWide = high != 0;
    }
    const char* Narrow() const { return narrow; }
    // Some character has a high byte; such a text stays as it is.
    bool IsWide() const { return isWide; }

private:
    char usual[kUsualText];
    std::unique_ptr<char[]> longText;
    char* narrow = usual;
    bool isWide;
};

void AppendTemplateText(CDlgBuffer& out, const char* text, const char* key) {
    const char* target = *text ? TranslateInContext(text, key) : nullptr;
    if (!target || !*target) target = text;
    int length = static_cast<int>(strlen(target));
    auto wide = reinterpret_cast<wchar_t*>(out.Reserve(2 * static_cast<size_t>(length)));
    out.Commit(2 * static_cast<size_t>(Widen(target, length, wide, length, MB_PRECOMPOSED)));
    out.AppendWord(0);
}

// Texts in the target language, and the dictionary's font.
class TranslationPass final : public TemplatePass {
public:
    TranslationPass(CDlgBuffer& out, const TemplateForm& form, const CWld& dictionary,
                    const char* key)
        : TemplatePass(out, form), dictionary(dictionary), key(key) {}

    void Caption(TemplatePart part) override { Text(part); }
    void Title(const TemplateControl& control) override {
        if (control.isTranslatable) {
            Text(control.title);
        } else {
            Copy(control.title);
        }
    }
    void Font(TemplatePart words, TemplatePart face) override {
        if (!dictionary.m_bDialogFont) return TemplatePass::Font(words, face);
        auto points = static_cast<uint16_t>(dictionary.m_nFontSize);
        out.AppendWord(points);
        if (form.fontWords > 1) {
            // The weight's place holds the size too, so the system makes a light font of it.
            out.AppendWord(points);
            out.AppendWord(
                static_cast<uint16_t>(dictionary.m_nFontScript << 8));  // charset, and not italic
        }
        AppendTemplateText(out, dictionary.m_szFontName, nullptr);
    }

private:
    void Text(TemplatePart part) {
        SourceText source(part);
        if (source.IsWide()) return Copy(part);
        AppendTemplateText(out, source.Narrow(), key);
    }

    const CWld& dictionary;
    const char* key;
};

// Grown and moved as the dictionary's geometry says; all texts as they are.
class GeometryPass final : public TemplatePass {
public:
    GeometryPass(CDlgBuffer& out, const TemplateForm& form, QXDlgPos& geometry)
        : TemplatePass(out, form), geometry(geometry) {}

    void Head(TemplatePart part) override {
        Copy(part);
        uint8_t* extent = out.Data() + form.extent;
        AddTo(extent, geometry.m_Size.cx);
        AddTo(extent + 2, geometry.m_Size.cy);
    }
    void ControlHead(unsigned index, TemplatePart part) override {
        Copy(part);
        // Looking into a map that never held anything would make its table.
        const CIRect* delta = geometry.m_Rects.count ? geometry.m_Rects.Find(index) : nullptr;
        if (!delta) return;
        uint8_t* rect = out.Data() + out.Used() - part.size + form.controlRect;
        // An edge moves by its own delta, so the extent changes by what the far edge moves more
        // than the near one.
        AddTo(rect, delta->left);
        AddTo(rect + 2, delta->top);
        AddTo(rect + 4, int64_t(delta->right) - delta->left);
        AddTo(rect + 6, int64_t(delta->bottom) - delta->top);
    }

private:
    static void AddTo(uint8_t* word, int64_t amount) {
        SetWordAt(word, static_cast<uint16_t>(WordAt(word) + amount));
    }

    QXDlgPos& geometry;
};

// Zero bytes behind a template that counts more controls than it holds: there the system finds
// controls of no class and refuses the dialog, instead of reading what lies behind the block.
size_t SlackBehind(const TemplatePass& pass) {
    constexpr size_t kEmptyControl = 32;
    if (pass.form.countSize == 2) return 0;
    return (WordAt(pass.out.Data() + pass.form.count) & 0xFF00) * kEmptyControl;
}

unsigned char* NewBlock(const TemplatePass& pass, int* size) {
    const CDlgBuffer& buffer = pass.out;
    size_t slack = SlackBehind(pass);
    auto block = static_cast<unsigned char*>(malloc(buffer.Used() + slack));
    if (!block) return nullptr;
    memcpy(block, buffer.Data(), buffer.Used());
    memset(block + buffer.Used(), 0, slack);
    *size = static_cast<int>(buffer.Used());
    return block;
}

unsigned char* Unchanged(TemplateBytes dialog, int* size) {
    *size = 0;
    return const_cast<unsigned char*>(dialog.data);
}

}  // namespace

unsigned char* TranslateTemplate(CWld& dictionary, TemplateBytes dialog, int* size,
                                 const char* key) {
    if (!dictionary.m_Contexts.count && !dictionary.m_bDialogFont) return Unchanged(dialog, size);
    CDlgBuffer out(kUsualTemplate);
    TranslationPass pass(out, FormOf(dialog), dictionary, key);
    if (!WalkTemplate(dialog, pass)) return Unchanged(dialog, size);
    return NewBlock(pass, size);
}

unsigned char* TranslateTemplatePosition(CWld& dictionary, TemplateBytes dialog, int hash,
                                         int* size, const char* key) {
    QXDlgPos** geometry = dictionary.m_DlgPos.count ? dictionary.m_DlgPos.Find(hash) : nullptr;
    if (!geometry) return TranslateTemplate(dictionary, dialog, size, key);
    CDlgBuffer adjusted(kUsualTemplate);
    GeometryPass pass(adjusted, FormOf(dialog), **geometry);
    if (!WalkTemplate(dialog, pass)) return Unchanged(dialog, size);
    TemplateBytes source = {adjusted.Data(), adjusted.Used()};
    unsigned char* block = TranslateTemplate(dictionary, source, size, key);
    if (block != adjusted.Data()) return block;
    return NewBlock(pass, size);
}
