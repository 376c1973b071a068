// Random operations on a tree in memory against a model that is simple enough to be right: names
// are folded, each node keeps its entries in order of first creation. A delimiter is a character of
// the process's code page.
#include "fuzz/fuzz_driver.h"

#include <qxcore.h>

#include <mbctype.h>

#include <memory>
#include <vector>

namespace {

using qx::Reference;

constexpr size_t kNone = std::string::npos;

// Where the delimiters stand. A trail byte that looks like one is none.
std::vector<size_t> Delimiters(const std::string& name) {
    std::vector<size_t> places;
    for (size_t at = 0; at < name.size(); ++at) {
        if (name[at] == '\\') places.push_back(at);
        if (_ismbblead(static_cast<unsigned char>(name[at]))) ++at;
    }
    return places;
}

size_t FirstDelimiter(const std::string& name) {
    std::vector<size_t> places = Delimiters(name);
    return places.empty() ? kNone : places.front();
}

size_t LastDelimiter(const std::string& name) {
    std::vector<size_t> places = Delimiters(name);
    return places.empty() ? kNone : places.back();
}

struct Model {
    struct Value {
        std::string name;  // as first spelled
        int value;
    };
    struct Child {
        std::string name;
        std::shared_ptr<Model> node;
    };
    std::vector<Value> values;
    std::vector<Child> children;

    template <class Entries>
    static auto Find(Entries& entries, const std::string& name) {
        auto at = entries.begin();
        while (at != entries.end() && _stricmp(at->name.c_str(), name.c_str()) != 0) ++at;
        return at;
    }

    void Clear() {
        values.clear();
        children.clear();
    }

    std::shared_ptr<Model> Create(const std::string& name) {
        size_t cut = FirstDelimiter(name);
        if (cut != kNone) {
            std::string head = name.substr(0, cut);
            auto at = Find(children, head);
            if (at == children.end()) {
                children.push_back({head, std::make_shared<Model>()});
                at = children.end() - 1;
            }
            std::shared_ptr<Model> node = at->node;
            return node->Create(name.substr(cut + 1));
        }
        auto at = Find(children, name);
        if (at == children.end()) {
            children.push_back({name, std::make_shared<Model>()});
            return children.back().node;
        }
        at->node->Clear();
        return at->node;
    }

    std::shared_ptr<Model> Open(const std::string& name, bool create) {
        size_t cut = FirstDelimiter(name);
        if (cut != kNone) {
            auto at = Find(children, name.substr(0, cut));
            std::string tail = name.substr(cut + 1);
            if (at != children.end()) return at->node->Open(tail, create);
            return create ? Create(tail) : nullptr;
        }
        auto at = Find(children, name);
        if (at != children.end()) return at->node;
        return create ? Create(name) : nullptr;
    }

    void Set(const std::string& name, int value) {
        size_t cut = LastDelimiter(name);
        if (cut != kNone) Open(name.substr(0, cut), true)->Set(name.substr(cut + 1), value);
        std::string own = name.empty() ? "@" : name;
        auto at = Find(values, own);
        if (at == values.end()) {
            values.push_back({own, value});
        } else {
            at->value = value;
        }
    }

    void DeleteValue(const std::string& name) {
        auto at = Find(values, name.empty() ? "@" : name);
        if (at != values.end()) values.erase(at);
    }

    void DeleteChild(const std::string& name) {
        if (std::shared_ptr<Model> node = Open(name, false)) node->Clear();
        auto at = Find(children, name);
        if (at != children.end()) children.erase(at);
    }

    std::string Text() const {
        std::string text;
        for (const Value& v : values) {
            // A path under the whole name is not read back.
            bool path = FirstDelimiter(v.name) != kNone;
            text += v.name + (path ? "" : "=" + std::to_string(v.value)) + ";";
        }
        for (const Child& c : children) text += c.name + "{" + c.node->Text() + "}";
        return text;
    }
};

std::string Text(IParam* node) {
    std::string text;
    const char* name;
    Reference<CTEnum<const char*>> values(node->EnumValues());
    while (values->Next(1, &name, nullptr)) {
        CQXVariant value;
        text += name;
        if (FirstDelimiter(name) == kNone && node->GetValue(name, &value))
            text += "=" + std::to_string(value.value.intVal);
        text += ";";
    }
    Reference<CTEnum<const char*>> children(node->EnumSubParams());
    while (children->Next(1, &name, nullptr)) {
        Reference<IParam> child(node->OpenSubParam(name, 0));
        text += std::string(name) + "{" + Text(child.Get()) + "}";
    }
    return text;
}

std::string RandomName(Random& random, unsigned levels) {
    static constexpr const char* kNames[] = {"a",  "A", "b",        "long name",   "X1",
                                             "x1", "c", "\x83\x5C", "\xE3\x82\xBD"};
    constexpr unsigned kCount = std::size(kNames);
    std::string name = kNames[random.Below(kCount)];
    while (--levels > 0 && random.Below(3) == 0)
        name += std::string("\\") + kNames[random.Below(kCount)];
    return name;
}

void Step(IParam* root, Model& model, Random& random) {
    std::string path = RandomName(random, 4), name = random.Below(8) ? RandomName(random, 3) : "";
    int number = int(random.Below(1000));
    CQXVariant value(number);
    switch (random.Below(9)) {
        case 0:
        case 1:
            Reference<IParam>(root->CreateSubParam(path.c_str()));
            model.Create(path);
            break;
        case 2:
            Reference<IParam>(root->OpenSubParam(path.c_str(), 1));
            model.Open(path, true);
            break;
        case 3:
        case 4:
        case 5:
            root->SetValue(name.c_str(), &value);
            model.Set(name, number);
            break;
        case 6:
            root->DeleteValue(name.c_str());
            model.DeleteValue(name);
            break;
        case 7:
            root->DeleteSubParam(path.c_str());
            model.DeleteChild(path);
            break;
        default:
            if (random.Below(10) != 0) break;
            root->Clear();
            model.Clear();
    }
}

// Walks over the names of the root that go on while the tree changes under them: what one delivers
// is there.
class Walks {
public:
    explicit Walks(IParam* root) : m_root(root) {}

    bool Step(const Model& model, Random& random) {
        size_t at = random.Below(std::size(m_walks));
        Names& walk = m_walks[at];
        if (random.Below(6) == 0) {
            walk = Start(at);
        } else if (random.Below(6) == 0) {
            walk->Reset();
        }
        const char* name;
        if (!walk->Next(1, &name, nullptr)) return true;
        if (IsOfValues(at)) return Model::Find(model.values, name) != model.values.end();
        return Model::Find(model.children, name) != model.children.end();
    }

private:
    using Names = Reference<CTEnum<const char*>>;

    IParam* m_root;
    Names m_walks[4] = {Start(0), Start(1), Start(2), Start(3)};

    static bool IsOfValues(size_t at) { return at % 2 == 0; }
    Names Start(size_t at) {
        return Names(IsOfValues(at) ? m_root->EnumValues() : m_root->EnumSubParams());
    }
};

bool Round(Random& random) {
    Reference<IParam> root(new_MemParam());
    Model model;
    bool same = true;
    {
        Walks walks(root.Get());
        for (int i = 0; same && i < 40; ++i) {
            Step(root.Get(), model, random);
            same = Text(root.Get()) == model.Text() && walks.Step(model, random);
        }
    }
    if (!same)
        fprintf(stderr, "tree:  %s\nmodel: %s\n", Text(root.Get()).c_str(), model.Text().c_str());
    return same;
}

}  // namespace

int main(int argc, char** argv) {
    return fuzz::Main(argc, argv, 300, Round);
}
