// Broken object frames: each ends in an object, in null or in an exception, and a stand-in for an
// unknown class writes the bytes that it was read from.
#include "fuzz/fuzz_driver.h"

#include <qxcore.h>

#include <algorithm>

namespace {

using qx::Ask;
using qx::Reference;

constexpr size_t kLongestName = 259;

std::string Frame(Random& random) {
    std::string name;
    for (unsigned n = random.Below(8); n > 0; --n)
        name.push_back(static_cast<char>('a' + random.Below(26)));
    if (random.Below(50) == 0) name.append(250 + random.Below(20), 'n');
    std::string payload(random.Below(40), 'p');
    auto size = static_cast<unsigned>(payload.size());
    return name + '\0' + std::string(reinterpret_cast<const char*>(&size), 4) + payload;
}

// Reads one frame; a stand-in must write what stood there.
bool ReadFrame(IXStream* stream, const std::string& bytes) {
    int start = stream->Tell();
    Reference<IQXUnknown> object;
    if (!ReadObjectFromXStream(stream, object.Receive())) return !object;
    int end = stream->Tell();
    Reference<IXStream> copy(new_StreamOnMemory());
    WriteObjectToXStream(copy.Get(), Ask<IPersistXStream>(object.Get()).Get());
    std::string written(copy->GetLength(), 0);
    copy->Seek(0, 0);
    copy->Read(written.data(), static_cast<int>(written.size()));
    // A name that a line feed or the reader's limit ends is written with a zero behind it.
    std::string read = bytes.substr(start, end - start);
    bool plainName = read.find('\0') < std::min<size_t>(read.find('\n'), kLongestName + 1);
    // A size cut off by the end passes as one with zeros, and is written in full.
    bool cut = end == stream->GetLength() && read.size() < written.size();
    return !plainName || written == read || (cut && written.substr(0, read.size()) == read);
}

bool Round(Random& random) {
    std::string bytes;
    for (unsigned n = 1 + random.Below(4); n > 0; --n) bytes += Frame(random);
    Mutate(bytes, random);
    Reference<IXStream> stream(new_StreamOnMemory());
    stream->Write(bytes.data(), static_cast<int>(bytes.size()));
    stream->Seek(0, 0);
    bool holds = true;
    try {
        while (holds && stream->Tell() < stream->GetLength())
            holds = ReadFrame(stream.Get(), bytes);
    } catch (CXException&) {
    }
    try {
        stream->Seek(0, 0);
        for (int i = 0; i < 100; ++i) SkipObjectToXStream(stream.Get());
    } catch (CXException&) {
    }
    return holds;
}

}  // namespace

int main(int argc, char** argv) {
    return fuzz::Main(argc, argv, 8000, Round);
}
