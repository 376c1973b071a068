#include "param/back_ends/differential_model.h"

#include "param/tree_text.h"

#include <mbctype.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace model {

namespace {

bool SameName(const std::string& a, const std::string& b) {
    return _stricmp(a.c_str(), b.c_str()) == 0;
}

template <class Entries>
bool HasName(const Entries& entries, const std::string& name) {
    return std::any_of(entries.begin(), entries.end(),
                       [&](const auto& entry) { return SameName(entry.name, name); });
}

size_t UnitsOf(const std::string& name) {
    return MultiByteToWideChar(CP_ACP, 0, name.c_str(), -1, nullptr, 0) - 1;
}

// --- What is lost

// In decimal: a digit of ten or more is written as a character that is none.
bool HasLetter(unsigned char byte) {
    return (byte >> 4) > 9 || (byte & 15) > 9;
}

void CutEndBlanks(std::string& text) {
    while (!text.empty() && text.back() == ' ') text.pop_back();
}

bool FitsIn(const std::string& name, const Losses& losses) {
    return UnitsOf(name) <= losses.longestName;
}

bool IsRefused(const Value& value, const Losses& losses) {
    return (losses.blobs && value.value.type == QXVT_BLOB) ||
           (losses.objects && value.value.type == QXVT_UNKNOWN) || !FitsIn(value.name, losses);
}

bool BecomesUnreadable(const CQXVariant& value, const Losses& losses) {
    return (losses.bytesWithLetters && value.type == QXVT_UI1 && HasLetter(value.value.ui1Val)) ||
           (losses.emptyTexts && value.type == QXVT_STRING && !*value.value.string);
}

double In14Digits(double number) {
    char text[64];
    snprintf(text, sizeof text, "%.14g", number);
    return strtod(text, nullptr);
}

void ChangeNumber(unsigned short type, tagQXVALUE& value) {
    if (type == QXVT_UI1) value.ui1Val = 0;
    if (type == QXVT_BOOL) value.boolVal = value.boolVal == 1;
    if (type == QXVT_FLOAT) value.floatVal = static_cast<float>(In14Digits(value.floatVal));
    bool isPair = type == QXVT_RSIZE || type == QXVT_RPOINT, isFour = type == QXVT_RRECT;
    int reals = isFour ? 4 : isPair ? 2 : type == QXVT_DOUBLE;
    double* real = &value.doubleVal;
    for (int i = 0; i < reals; ++i) real[i] = In14Digits(real[i]);
}

void Change(CQXVariant& value, const Losses& losses) {
    if (losses.asText) ChangeNumber(value.type, value.value);
    if (value.type != QXVT_STRING) return;
    std::string text = value.value.string;
    if (losses.behindSemicolons) text = text.substr(0, text.find(';'));
    if (losses.endBlanks) CutEndBlanks(text);
    value = text.c_str();
}

std::vector<Value> KeptValues(const Tree& tree, const Losses& losses) {
    std::vector<Value> kept;
    for (Value value : tree.values) {
        if (!value.readable && losses.unreadableIsAbsent) continue;
        if (IsRefused(value, losses)) continue;
        if (losses.valuesWithAChildsName && HasName(tree.children, value.name)) continue;
        if (BecomesUnreadable(value.value, losses)) {
            if (losses.unreadableIsAbsent) continue;
            value.readable = false;
        }
        Change(value.value, losses);
        kept.push_back(value);
    }
    if (losses.marker && !HasName(kept, "@")) kept.push_back({"@", CQXVariant()});
    return kept;
}

// --- Trees at random

// Characters of names and texts besides ASCII ones, none with a twin of the other case.
const std::vector<std::string>& ForeignCharacters() {
    // The second bytes of these are "\", "|", "[", "]" and "_" in ASCII.
    static const std::vector<std::string> japanese = {
        "\x83\x5C", "\x83\x7C", "\x83\x5B", "\x83\x5D", "\x83\x5F", "\x8A\xBF", "\xB1"};
    static const std::vector<std::string> western = {"\xDF", "\xA7", "\xB5", "\xB0"};
    return _ismbblead(0x83) ? japanese : western;
}

std::string RandomCharacter(Random& random, const char* plain) {
    if (random.Below(8) == 0)
        return ForeignCharacters()[random.Below(unsigned(ForeignCharacters().size()))];
    return std::string(1, plain[random.Below(unsigned(strlen(plain)))]);
}

std::string RandomName(Random& random) {
    constexpr char kFirst[] = "abcdefghiXYZ0123456789.(_", kInside[] = "abcXYZ012 .[](){}_-+,";
    unsigned length = random.Below(10) ? 1 + random.Below(12) : 20 + random.Below(50);
    std::string name = RandomCharacter(random, kFirst);
    for (unsigned i = 1; i < length; ++i) name += RandomCharacter(random, kInside);
    CutEndBlanks(name);
    return name;
}

std::string RandomText(Random& random) {
    constexpr char kPlain[] = "abcXYZ012  =;,.\"'[]#%\\/:!@";
    std::string text;
    for (unsigned i = random.Below(6) ? random.Below(30) : 0; i > 0; --i)
        text += RandomCharacter(random, kPlain);
    return text;
}

// Of few digits, or of fourteen and a fifteenth that every way of rounding drops.
double RandomReal(Random& random) {
    if (random.Below(3) == 0) return ldexp(random.Below(100), -int(random.Below(10)));
    char text[64];
    snprintf(text, sizeof text, "%s%u.%06u%07u2e%d", random.Below(2) ? "-" : "",
             1 + random.Below(9), random.Below(1000000), random.Below(10000000),
             int(random.Below(60)) - 30);
    return strtod(text, nullptr);
}

// An object that writes itself, of a class that nobody registers.
class CNote : public CQXUnknownImpl<IPersistXStream> {
public:
    explicit CNote(std::string payload) : m_payload(std::move(payload)) {}
    const char* GetClassName() override { return "DifferentialNote"; }
    unsigned GetSizeMax() override { return static_cast<unsigned>(m_payload.size()); }
    void Load(IXStream*) override {}
    void Save(IXStream* stream) override {
        stream->Write(m_payload.data(), static_cast<int>(m_payload.size()));
    }
    // Asked for its interface, it is one that writes itself.
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        return InternalQueryInterface(id, out);
    }

private:
    std::string m_payload;
};

CQXVariant RandomObject(Random& random) {
    if (random.Below(4) == 0) return CQXVariant(static_cast<IQXUnknown*>(nullptr));
    auto note = new CNote(RandomText(random) + "payload");
    CQXVariant object(static_cast<IQXUnknown*>(note));
    note->Release();
    return object;
}

CQXVariant RandomValue(Random& random) {
    auto real = [&] { return RandomReal(random); };
    auto number = [&] { return static_cast<int>(random.Next()); };
    switch (random.Below(19)) {
        case QXVT_EMPTY:
            return CQXVariant();
        case QXVT_BOOL: {
            CQXVariant flag(1, QXVT_BOOL);
            flag.value.boolVal = random.Below(5) ? int(random.Below(2)) : number();
            return flag;
        }
        case QXVT_UI1:
            return CQXVariant(static_cast<unsigned char>(random.Next()));
        case QXVT_UI2:
            return CQXVariant(static_cast<unsigned short>(random.Next()));
        case QXVT_ULONG:
            return CQXVariant(static_cast<unsigned long>(random.Next()));
        case QXVT_INT:
            return CQXVariant(number());
        case QXVT_UINT:
            return CQXVariant(random.Next());
        case QXVT_LONG:
            return CQXVariant(static_cast<long>(number()));
        case QXVT_DOUBLE:
            return CQXVariant(real());
        case QXVT_FLOAT:
            return CQXVariant(static_cast<float>(real()));
        case QXVT_SIZE:
            return CQXVariant(tagSIZE{number(), number()});
        case QXVT_RSIZE:
            return CQXVariant(tagRSIZE{real(), real()});
        case QXVT_POINT:
            return CQXVariant(tagPOINT{number(), number()});
        case QXVT_RPOINT:
            return CQXVariant(tagRPOINT{real(), real()});
        case QXVT_RECT:
            return CQXVariant(tagRECT{number(), number(), number(), number()});
        case QXVT_RRECT:
            return CQXVariant(tagRRECT{real(), real(), real(), real()});
        case QXVT_BLOB: {
            std::string bytes = RandomText(random) + std::string(random.Below(3), '\0');
            return CQXVariant(tagQXBLOB{static_cast<unsigned>(bytes.size()), bytes.data()});
        }
        case QXVT_UNKNOWN:
            return RandomObject(random);
        default:
            return CQXVariant(RandomText(random).c_str());
    }
}

void Grow(Tree& tree, Random& random, unsigned children, int depth) {
    for (unsigned n = random.Below(5); n > 0; --n) {
        std::string name = random.Below(15) ? RandomName(random) : "@";
        if (!HasName(tree.values, name)) tree.values.push_back({name, RandomValue(random)});
    }
    constexpr int kDeepest = 8;
    if (depth == kDeepest) return;
    for (unsigned n = random.Below(depth < 2 ? children + 1 : 2); n > 0; --n) {
        bool asAValue = !tree.values.empty() && random.Below(12) == 0;
        Tree child;
        child.name = asAValue ? tree.values[0].name : RandomName(random);
        if (child.name == "@" || HasName(tree.children, child.name)) continue;
        Grow(child, random, children, depth + 1);
        tree.children.push_back(std::move(child));
    }
}

// --- Lines

// In the fewest digits that tell it from every other number.
std::string RealText(double number) {
    char text[64];
    return std::string(text, std::to_chars(text, std::end(text), number).ptr);
}

template <class... Numbers>
std::string Joined(Numbers... numbers) {
    std::string text;
    ((text += (text.empty() ? "" : ",") + std::to_string(numbers)), ...);
    return text;
}

std::string Quoted(const void* bytes, size_t size) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text = "'";
    for (size_t i = 0; i < size; ++i) {
        unsigned char byte = static_cast<const unsigned char*>(bytes)[i];
        if (byte >= 32 && byte < 127) {
            text += static_cast<char>(byte);
        } else {
            ((text += "\\x") += kDigits[byte >> 4]) += kDigits[byte & 15];
        }
    }
    return text + "'";
}

std::string FrameOf(IQXUnknown* object) {
    if (!object) return "null";
    IQXUnknown* writes = nullptr;
    object->QueryInterface(qx_typeid<IPersistXStream>(), &writes);
    qx::Reference<IXStream> stream(new_StreamOnMemory());
    WriteObjectToXStream(stream.Get(), static_cast<IPersistXStream*>(writes));
    if (writes) writes->Release();
    std::string bytes(stream->Seek(0, 2), '?');
    stream->Seek(0, 0);
    stream->Read(bytes.data(), static_cast<int>(bytes.size()));
    return Quoted(bytes.data(), bytes.size());
}

std::string Plain(const CQXVariant& v) {
    const tagQXVALUE& value = v.value;
    switch (v.type) {
        case QXVT_SIZE:
        case QXVT_POINT:
            return Joined(value.size.cx, value.size.cy);
        case QXVT_RECT:
            return Joined(value.rect.left, value.rect.top, value.rect.right, value.rect.bottom);
        case QXVT_DOUBLE:
            return RealText(value.doubleVal);
        case QXVT_FLOAT:
            return RealText(value.floatVal);
        case QXVT_RSIZE:
        case QXVT_RPOINT:
            return RealText(value.rsize.cx) + "," + RealText(value.rsize.cy);
        case QXVT_RRECT:
            return RealText(value.rrect.left) + "," + RealText(value.rrect.top) + "," +
                   RealText(value.rrect.right) + "," + RealText(value.rrect.bottom);
        case QXVT_STRING:
            return Quoted(value.string, strlen(value.string));
        case QXVT_BLOB:
            return Quoted(value.blob.data, value.blob.size);
        case QXVT_UNKNOWN:
            return FrameOf(value.unknown);
        default:
            return ValueText(v);
    }
}

std::string Line(const Value& value) {
    std::string text = value.readable ? std::to_string(value.value.type) + ":" + Plain(value.value)
                                      : std::string("unreadable");
    return Quoted(value.name.data(), value.name.size()) + "=" + text;
}

}  // namespace

Losses OfMemory() {
    return {};
}

Losses OfIniFile() {
    Losses losses;
    losses.blobs = losses.objects = true;
    losses.asText = losses.endBlanks = losses.bytesWithLetters = true;
    losses.marker = losses.singleByteLeaves = true;
    return losses;
}

Losses OfRegistry() {
    Losses losses;
    losses.objects = true;
    losses.emptyTexts = true;
    return losses;
}

Losses OfStorage() {
    Losses losses;
    losses.longestName = 31;
    losses.childrenWithAValuesName = true;
    return losses;
}

Losses OfStorageByValuesFirst() {
    Losses losses = OfStorage();
    losses.childrenWithAValuesName = false;
    losses.valuesWithAChildsName = true;
    return losses;
}

Losses OfIniText() {
    Losses losses;
    losses.blobs = losses.objects = true;
    losses.asText = losses.endBlanks = losses.behindSemicolons = losses.bytesWithLetters = true;
    losses.unreadableIsAbsent = true;
    return losses;
}

Losses OfStream() {
    return {};
}

Tree Kept(const Tree& tree, const Losses& losses) {
    Tree kept;
    kept.name = tree.name;
    kept.values = KeptValues(tree, losses);
    for (const Tree& child : tree.children) {
        bool isLeafOfRoot = tree.name.empty() && child.children.empty();
        if (losses.singleByteLeaves && isLeafOfRoot && child.name.size() == 1) continue;
        if (losses.childrenWithAValuesName && HasName(kept.values, child.name)) continue;
        if (!FitsIn(child.name, losses)) continue;
        kept.children.push_back(Kept(child, losses));
    }
    return kept;
}

Tree Copied(Tree tree) {
    for (Value& value : tree.values) {
        if (!value.readable) value.value.Clear();
        value.readable = true;
    }
    for (Tree& child : tree.children) child = Copied(std::move(child));
    return tree;
}

Tree RandomTree(Random& random, unsigned children) {
    Tree tree;
    Grow(tree, random, children, 0);
    return tree;
}

Tree Read(IParam* node) {
    Tree tree;
    const char* name;
    NamesPtr values(node->EnumValues());
    while (values->Next(1, &name, nullptr)) {
        Value value;
        value.name = name;
        value.readable = node->GetValue(name, &value.value) != 0;
        tree.values.push_back(std::move(value));
    }
    NamesPtr children(node->EnumSubParams());
    while (children->Next(1, &name, nullptr)) {
        ParamPtr child(node->OpenSubParam(name, 0));
        Tree below = child ? Read(child.Get()) : Tree();
        below.name = child ? name : std::string(name) + " does not open";
        tree.children.push_back(std::move(below));
    }
    return tree;
}

void Write(const Tree& tree, IParam* node) {
    for (const Tree& child : tree.children) {
        ParamPtr made(node->CreateSubParam(child.name.c_str()));
        if (made) Write(child, made.Get());
    }
    for (const Value& value : tree.values) node->SetValue(value.name.c_str(), &value.value);
}

std::string Line(const Tree& tree) {
    std::vector<std::string> parts;
    for (const Value& value : tree.values) parts.push_back(Line(value));
    for (const Tree& child : tree.children)
        parts.push_back(Quoted(child.name.data(), child.name.size()) + "{" + Line(child) + "}");
    std::sort(parts.begin(), parts.end());
    std::string line;
    for (const std::string& part : parts) line += (line.empty() ? "" : " ") + part;
    return line;
}

}  // namespace model
