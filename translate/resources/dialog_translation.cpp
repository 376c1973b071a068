#include "translate/resources/dialog_translation.h"

#include "translate/dictionary/code_page.h"
#include "translate/resources/template_pass.h"

#include <climits>
#include <cstdlib>
#include <memory>

namespace qx {

namespace {

constexpr size_t kUsualText = 256;

// A wide text of a template as the dictionary sees it: the low bytes of its characters.
class SourceText {
public:
    explicit SourceText(TemplatePart text) {
        size_t characters = text.size / 2;
        if (characters > kUsualText) {
            m_long.reset(new char[characters]);
            m_narrow = m_long.get();
        }
        uint8_t high = 0;
        for (size_t i = 0; i < characters; ++i) {
            m_narrow[i] = static_cast<char>(text.data[2 * i]);
            high |= text.data[2 * i + 1];
        }
        m_isWide = high != 0;
    }
    const char* Narrow() const { return m_narrow; }
    // Some character has a high byte; such a text stays as it is.
    bool IsWide() const { return m_isWide; }

private:
    char m_usual[kUsualText];
    std::unique_ptr<char[]> m_long;
    char* m_narrow = m_usual;
    bool m_isWide;
};

void AppendTemplateText(CDlgBuffer& out, const char* text, const Place& place) {
    const char* target = *text ? TranslateAt(text, place) : nullptr;
    if (!target || !*target) target = text;
    int length = static_cast<int>(strlen(target));
    auto wide = reinterpret_cast<wchar_t*>(out.Reserve(2 * static_cast<size_t>(length)));
    out.Commit(2 * static_cast<size_t>(Widen(target, length, wide, length, MB_PRECOMPOSED)));
    out.AppendWord(0);
}

// Texts in the target language, and the dictionary's font.
class TranslationPass final : public TemplatePass {
public:
    TranslationPass(TemplateBytes dialog, const CWld& dictionary, const Place& place)
        : TemplatePass(dialog), m_dictionary(dictionary), m_place(place) {}

    void Caption(TemplatePart text) override { Text(text); }
    void Font(TemplatePart words, TemplatePart face) override {
        if (!m_dictionary.m_bDialogFont) return TemplatePass::Font(words, face);
        auto points = static_cast<uint16_t>(m_dictionary.m_nFontSize);
        Out().AppendWord(points);
        if (Form().fontWords > 1) {
            // The weight's place holds the size too, so the system makes a light font of it.
            Out().AppendWord(points);
            // The charset; not italic.
            Out().AppendWord(static_cast<uint16_t>(m_dictionary.m_nFontScript << 8));
        }
        AppendFontName();
    }

private:
    void Title(const TemplateControl& control) override {
        if (control.isTranslatable) return Text(control.title);
        Copy(control.title);
        if (m_place.call) TellTitle(control.title);
    }
    void Text(TemplatePart part) {
        SourceText source(part);
        if (!source.IsWide()) return AppendTemplateText(Out(), source.Narrow(), m_place);
        Copy(part);
        if (m_place.call)
            TellOf(m_place.call, InCodePage(part.data, part.size / 2 - 1).text, QXLOOKUP_WIDE);
    }
    // The name may be mapped by the dictionary, in every place alike.
    void AppendFontName() {
        Place anywhere;
        LookupCall call;
        if (m_place.call) {
            call = {m_place.call->function, m_place.call->module, nullptr};
            anywhere.call = &call;
        }
        AppendTemplateText(Out(), m_dictionary.m_szFontName, anywhere);
    }
    void TellTitle(TemplatePart title) {
        constexpr uint16_t kNumber = 0xFFFF;
        if (WordAt(title.data) == kNumber || WordAt(title.data) == 0) return;
        TellOf(m_place.call, InCodePage(title.data, title.size / 2 - 1).text, QXLOOKUP_CLASS);
    }

    const CWld& m_dictionary;
    Place m_place;
};

// Grown and moved as the dictionary's geometry says; all texts as they are.
class GeometryPass final : public TemplatePass {
public:
    GeometryPass(TemplateBytes dialog, QXDlgPos& geometry)
        : TemplatePass(dialog), m_geometry(geometry) {}

    void Head(TemplatePart part) override {
        Copy(part);
        uint8_t* extent = Out().Data() + Form().extent;
        AddTo(extent, m_geometry.m_Size.cx);
        AddTo(extent + 2, m_geometry.m_Size.cy);
    }

private:
    void ControlHead(unsigned index, TemplatePart part) override {
        Copy(part);
        // Looking into a map that never held anything would make its table.
        const CIRect* delta = m_geometry.m_Rects.count ? m_geometry.m_Rects.Find(index) : nullptr;
        if (!delta) return;
        uint8_t* rect = Out().Data() + Out().Used() - part.size + Form().controlRect;
        // An edge moves by its own delta, so the extent changes by what the far edge moves more
        // than the near one.
        AddTo(rect, delta->left);
        AddTo(rect + 2, delta->top);
        AddTo(rect + 4, int64_t(delta->right) - delta->left);
        AddTo(rect + 6, int64_t(delta->bottom) - delta->top);
    }
    static void AddTo(uint8_t* word, int64_t amount) {
        SetWordAt(word, static_cast<uint16_t>(WordAt(word) + amount));
    }

    QXDlgPos& m_geometry;
};

// Zero bytes behind a template that counts more controls than it holds: there the system finds
// controls of no class and refuses the dialog, instead of reading what lies behind the block.
size_t SlackBehind(const TemplatePass& pass) {
    constexpr size_t kEmptyControl = 32;
    if (pass.Form().countSize == 2) return 0;
    return (WordAt(pass.Written().data + pass.Form().count) & 0xFF00) * kEmptyControl;
}

// Null when memory has run out, and for a template longer than a size can tell.
unsigned char* NewBlock(const TemplatePass& pass, int* size) {
    TemplateBytes written = pass.Written();
    size_t slack = SlackBehind(pass);
    if (written.size > INT_MAX) return nullptr;
    auto block = static_cast<unsigned char*>(malloc(written.size + slack));
    if (!block) return nullptr;
    memcpy(block, written.data, written.size);
    memset(block + written.size, 0, slack);
    *size = static_cast<int>(written.size);
    return block;
}

unsigned char* Unchanged(TemplateBytes dialog, int* size) {
    *size = 0;
    return const_cast<unsigned char*>(dialog.data);
}

}  // namespace

unsigned char* TranslateTemplate(CWld& dictionary, TemplateBytes dialog, int* size,
                                 const Place& place) {
    bool isChanging = dictionary.m_Contexts.count || dictionary.m_bDialogFont;
    // A dictionary that changes nothing is asked for the observer alone.
    if (!isChanging && !place.call) return Unchanged(dialog, size);
    TranslationPass pass(dialog, dictionary, place);
    bool hasHead = pass.Run(dialog);
    return hasHead && isChanging ? NewBlock(pass, size) : Unchanged(dialog, size);
}

unsigned char* TranslateTemplatePosition(CWld& dictionary, TemplateBytes dialog, int hash,
                                         int* size, const Place& place) {
    QXDlgPos** geometry = dictionary.m_DlgPos.count ? dictionary.m_DlgPos.Find(hash) : nullptr;
    if (!geometry) return TranslateTemplate(dictionary, dialog, size, place);
    GeometryPass pass(dialog, **geometry);
    if (!pass.Run(dialog)) return Unchanged(dialog, size);
    TemplateBytes adjusted = pass.Written();
    unsigned char* block = TranslateTemplate(dictionary, adjusted, size, place);
    return block != adjusted.data ? block : NewBlock(pass, size);
}

}  // namespace qx

unsigned char* CWld::TranslateDlg(unsigned char* dialog, int* size, const char* key) {
    return qx::TranslateTemplate(*this, {dialog, qx::TemplateBytes::kUnknownSize}, size,
                                 {qx::PlaceOfKey(key)});
}

unsigned char* CWld::TranslateDlgPosition(unsigned char* dialog, int hash, int* size,
                                          const char* key) {
    return qx::TranslateTemplatePosition(*this, {dialog, qx::TemplateBytes::kUnknownSize}, hash,
                                         size, {qx::PlaceOfKey(key)});
}
