// Damaged property sets: whatever is asked of them and written into them ends in an answer, and no
// text is kept in part.
#include "fuzz/fuzz_driver.h"

#include <qxcore.h>

namespace {

constexpr const char* kNames[] = {"Title",       "Subject",  "Author",   "Keywords", "Comments",
                                  "Last Author", "App name", "Category", "Company"};
constexpr const char* kSets[] = {"\005SummaryInformation", "\005DocumentSummaryInformation"};

using qx::Ask;
using qx::Reference;

std::string BytesOf(IXStorage* storage, const char* name) {
    Reference<IXStream> stream(storage->OpenStream(name));
    std::string bytes(stream->GetLength(), 0);
    stream->Read(bytes.data(), static_cast<int>(bytes.size()));
    return bytes;
}

void Put(IXStorage* storage, const char* name, const std::string& bytes) {
    Reference<IXStream> stream(storage->CreateStream(name));
    stream->Write(bytes.data(), static_cast<int>(bytes.size()));
}

std::string SoundSet(const char* set) {
    Reference<IXStorage> storage(new_Storage(nullptr, 0));
    Reference<IQXProperty> properties = Ask<IQXProperty>(storage.Get());
    for (const char* name : kNames) {
        CQXVariant text((std::string(name) + " of a document").c_str());
        properties->SetProperty(name, text);
    }
    properties.Release();
    return BytesOf(storage.Get(), set);
}

// A number of 4 bytes in the tables: counts, offsets, types and lengths stand on such places.
void DamageNumber(std::string& bytes, Random& random) {
    size_t at = random.Below(static_cast<unsigned>(bytes.size() / 4)) * 4;
    unsigned small = random.Below(80);
    unsigned number = random.Below(2) ? small : random.Border();
    bytes.replace(at, 4, reinterpret_cast<const char*>(&number), 4);
    bytes.resize(bytes.size() / 4 * 4);
}

// A text that was written is read whole, or not at all where the platform cannot keep the values
// beside it.
bool WriteAndRead(IQXProperty* properties, const char* name) {
    CQXVariant text("another text"), read;
    if (!properties->SetProperty(name, text)) return true;
    return !properties->GetProperty(name, &read) || read == text;
}

bool Round(Random& random) {
    Reference<IXStorage> storage(new_Storage(nullptr, 0));
    for (const char* set : kSets) {
        std::string bytes = SoundSet(set);
        for (unsigned n = 1 + random.Below(3); n > 0 && bytes.size() > 4; --n) {
            if (random.Below(3)) {
                DamageNumber(bytes, random);
            } else {
                Mutate(bytes, random);
            }
        }
        Put(storage.Get(), set, bytes);
    }
    Reference<IQXProperty> properties = Ask<IQXProperty>(storage.Get());
    for (const char* name : kNames) {
        CQXVariant read;
        properties->GetProperty(name, &read);
        if (random.Below(3) == 0 && !WriteAndRead(properties.Get(), name)) return false;
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    return fuzz::Main(argc, argv, 1500, Round);
}
