#include "translate/resources/template_model.h"

#include <iomanip>

namespace {

constexpr uint32_t kSetFont = 0x40;

class Writer {
public:
    template <class T>
    void Put(T value) {
        for (size_t i = 0; i < sizeof value; ++i)
            bytes.push_back(static_cast<uint8_t>(static_cast<uint64_t>(value) >> (8 * i)));
    }
    void PutText(const std::wstring& text) {
        for (wchar_t c : text) Put<uint16_t>(c);
        Put<uint16_t>(0);
    }
    void PutField(const FieldModel& field) {
        if (!field.number) return PutText(field.text);
        Put<uint16_t>(0xFFFF);
        Put<uint16_t>(*field.number);
    }
    void PutRect(const auto& r) { Put(r.x), Put(r.y), Put(r.cx), Put(r.cy); }
    void Align() {
        while (bytes.size() % 4) bytes.push_back(0);
    }
    std::vector<uint8_t> bytes;
};

// Throws an int when the bytes end.
class Reader {
public:
    Reader(const uint8_t* data, size_t size) : data(data), size(size) {}
    template <class T>
    T Get() {
        uint64_t value = 0;
        for (size_t i = 0; i < sizeof(T); ++i) {
            if (at >= size) throw 0;
            value |= static_cast<uint64_t>(data[at++]) << (8 * i);
        }
        return static_cast<T>(value);
    }
    std::wstring GetText() {
        std::wstring text;
        while (wchar_t c = Get<uint16_t>()) text += c;
        return text;
    }
    FieldModel GetField() {
        auto first = Get<uint16_t>();
        if (first == 0xFFFF) return FieldModel::Number(Get<uint16_t>());
        at -= 2;
        return FieldModel(GetText());
    }
    void GetRect(auto& r) {
        r.x = Get<int16_t>();
        r.y = Get<int16_t>();
        r.cx = Get<int16_t>();
        r.cy = Get<int16_t>();
    }
    void Align() {
        while (at % 4) Get<uint8_t>();
    }
    size_t At() const { return at; }
    size_t Left() const { return size - at; }

private:
    const uint8_t* data;
    size_t size;
    size_t at = 0;
};

void WriteControl(Writer& w, const ControlModel& c, bool extended) {
    w.Align();
    if (extended) w.Put(c.helpId), w.Put(c.exStyle), w.Put(c.style);
    if (!extended) w.Put(c.style), w.Put(c.exStyle);
    w.PutRect(c);
    if (extended) w.Put(c.id);
    if (!extended) w.Put(static_cast<uint16_t>(c.id));
    w.PutField(c.windowClass);
    w.PutField(c.title);
    w.Put(static_cast<uint16_t>(c.creation.size()));
    for (uint8_t byte : c.creation) w.Put(byte);
}

ControlModel ReadControl(Reader& r, bool extended) {
    ControlModel c;
    r.Align();
    if (extended) {
        c.helpId = r.Get<uint32_t>();
        c.exStyle = r.Get<uint32_t>();
        c.style = r.Get<uint32_t>();
    } else {
        c.style = r.Get<uint32_t>();
        c.exStyle = r.Get<uint32_t>();
    }
    r.GetRect(c);
    c.id = extended ? r.Get<uint32_t>() : r.Get<uint16_t>();
    c.windowClass = r.GetField();
    c.title = r.GetField();
    c.creation.resize(r.Get<uint16_t>());
    for (uint8_t& byte : c.creation) byte = r.Get<uint8_t>();
    return c;
}

void ReadHead(Reader& r, DialogModel& d) {
    if (d.extended) {
        r.Get<uint32_t>();
        d.helpId = r.Get<uint32_t>();
        d.exStyle = r.Get<uint32_t>();
        d.style = r.Get<uint32_t>();
    } else {
        d.style = r.Get<uint32_t>();
        d.exStyle = r.Get<uint32_t>();
    }
    d.count = r.Get<uint16_t>();
    r.GetRect(d);
    d.menu = r.GetField();
    d.windowClass = r.GetField();
    d.caption = r.GetText();
    if ((d.style & kSetFont) == 0) return;
    d.font.emplace();
    d.font->size = r.Get<uint16_t>();
    if (d.extended) {
        d.font->weight = r.Get<uint16_t>();
        d.font->italicAndCharset = r.Get<uint16_t>();
    }
    d.font->face = r.GetText();
}

}  // namespace

std::vector<uint8_t> WriteTemplate(const DialogModel& d) {
    Writer w;
    uint32_t style = d.font ? d.style | kSetFont : d.style;
    if (d.extended)
        w.Put<uint16_t>(1), w.Put<uint16_t>(0xFFFF), w.Put(d.helpId), w.Put(d.exStyle),
            w.Put(style);
    if (!d.extended) w.Put(style), w.Put(d.exStyle);
    w.Put(d.count ? d.count : static_cast<uint16_t>(d.controls.size()));
    w.PutRect(d);
    w.PutField(d.menu);
    w.PutField(d.windowClass);
    w.PutText(d.caption);
    if (d.font) {
        w.Put(d.font->size);
        if (d.extended) w.Put(d.font->weight), w.Put(d.font->italicAndCharset);
        w.PutText(d.font->face);
    }
    for (const ControlModel& c : d.controls) WriteControl(w, c, d.extended);
    return w.bytes;
}

std::optional<DialogModel> ParseTemplate(const uint8_t* data, size_t size, size_t* left) {
    DialogModel d;
    d.extended = size >= 4 && data[2] == 0xFF && data[3] == 0xFF;
    Reader r(data, size);
    try {
        ReadHead(r, d);
    } catch (int) {
        return std::nullopt;
    }
    size_t wholeEnd = r.At();
    try {
        while (d.controls.size() < d.count) {
            ControlModel control = ReadControl(r, d.extended);
            wholeEnd = r.At();
            d.controls.push_back(std::move(control));
        }
    } catch (int) {
    }
    if (left) *left = size - wholeEnd;
    if (!left && size != wholeEnd) return std::nullopt;
    return d;
}

namespace {

void PrintText(const std::wstring& text, std::ostream& out) {
    out << '"';
    for (wchar_t c : text) {
        if (c >= 32 && c < 127) {
            out << static_cast<char>(c);
        } else {
            out << "\\x" << std::hex << static_cast<unsigned>(c) << std::dec;
        }
    }
    out << '"';
}

void PrintField(const FieldModel& field, std::ostream& out) {
    if (field.number) {
        out << '#' << *field.number;
    } else {
        PrintText(field.text, out);
    }
}

}  // namespace

void PrintTo(const DialogModel& d, std::ostream* out) {
    *out << (d.extended ? "DIALOGEX " : "DIALOG ") << std::hex << d.helpId << ' ' << d.exStyle
         << ' ' << d.style << std::dec << " (" << d.x << ',' << d.y << ',' << d.cx << ',' << d.cy
         << ") count " << d.count << " menu ";
    PrintField(d.menu, *out);
    *out << " class ";
    PrintField(d.windowClass, *out);
    *out << " caption ";
    PrintText(d.caption, *out);
    if (d.font) {
        *out << " font " << d.font->size << ' ' << d.font->weight << ' ' << d.font->italicAndCharset
             << ' ';
        PrintText(d.font->face, *out);
    }
    for (const ControlModel& c : d.controls) {
        *out << "\n  " << std::hex << c.helpId << ' ' << c.exStyle << ' ' << c.style << std::dec
             << " (" << c.x << ',' << c.y << ',' << c.cx << ',' << c.cy << ") id " << c.id << ' ';
        PrintField(c.windowClass, *out);
        *out << ' ';
        PrintField(c.title, *out);
        *out << " creation " << c.creation.size();
    }
}
