// Random access compared with a reference copy, in every width and across every seam.
#include "file/file_fixture.h"

#include <cstring>
#include <random>

namespace {

class RandomAccessTest : public FileTest {};

constexpr unsigned kWidths[] = {
    1, 2, 3, 4, 5, 7, 8, 9, 16, 100, 4096, 65536, kChunk, kChunk + 1, 2 * kChunk + 3};

// Sizes around multiples of the chunk, and one that is far from any.
constexpr unsigned kSizes[] = {kChunk - 1, kChunk,         kChunk + 1, 3 * kChunk - 1,
                               3 * kChunk, 3 * kChunk + 1, 300001};

std::string Expected(const std::string& copy, size_t at, size_t count) {
    return at < copy.size() ? copy.substr(at, count) : std::string();
}

std::string Take(IXFile& file, unsigned count) {
    std::string text(count, '\xEE');
    text.resize(file.Read(text.data(), count));
    return text;
}

template <class T>
T ValueAt(const std::string& copy, size_t at) {
    T value;
    memcpy(&value, copy.data() + at, sizeof value);
    return value;
}

}  // namespace

TEST_F(RandomAccessTest, EveryWidthReadsAcrossEverySeam) {
    for (unsigned size : kSizes) {
        std::string copy = Pattern(size);
        File file = Open(MakeFile("f", copy), QXFIO_RANDOM);
        for (unsigned seam = kChunk; seam <= size + kChunk; seam += kChunk) {
            for (unsigned width : kWidths) {
                for (unsigned before : {0u, 1u, 2u, 3u, 4u, 7u, 8u, 9u, width, kChunk - 1}) {
                    if (before > seam || seam - before > size) continue;
                    unsigned at = seam - before;
                    file->Seek(at, 0);
                    ASSERT_EQ(Take(*file.Get(), width) == Expected(copy, at, width), true)
                        << "size " << size << " at " << at << " width " << width;
                    ASSERT_EQ(file->Tell(), std::min(at + width, size));
                }
            }
        }
    }
}

TEST_F(RandomAccessTest, TypedReadsStraddleEverySeam) {
    std::string copy = Pattern(3 * kChunk + 8);
    File file = Open(MakeFile("f", copy), QXFIO_RANDOM);
    for (unsigned seam : {kChunk, 2 * kChunk, 3 * kChunk}) {
        for (unsigned at = seam - 9; at <= seam; ++at) {
            file->Seek(at, 0);
            EXPECT_EQ(file->ReadByte(), ValueAt<unsigned char>(copy, at));
            file->Seek(at, 0);
            EXPECT_EQ(file->ReadShort(), ValueAt<unsigned short>(copy, at));
            file->Seek(at, 0);
            EXPECT_EQ(file->ReadLong(), ValueAt<unsigned>(copy, at));
            file->Seek(at, 0);
            double value = file->ReadDouble();
            EXPECT_EQ(memcmp(&value, copy.data() + at, 8), 0);
        }
    }
}

TEST_F(RandomAccessTest, LinesStraddleTheSeam) {
    std::string path = MakeFile("f", std::string(2 * kChunk, 'a'));
    File file = Open(path, QXFIO_OUTPUT | QXFIO_KEEP);
    for (unsigned before = 0; before < 36; ++before) {
        for (unsigned length : {0u, 1u, 3u, 7u, 8u, 15u, 16u, 17u, 33u}) {
            unsigned start = kChunk - before;
            file->Seek(start + length, 0);
            file->WriteByte('\n');
            file->Seek(start, 0);
            std::string buffer(64, '?');
            ASSERT_EQ(file->ReadLine(buffer.data(), 60), int(length)) << before;
            ASSERT_EQ(buffer,
                      std::string(length, 'a') + '\n' + '\0' + std::string(62 - length, '?'))
                << before;
            ASSERT_EQ(file->Tell(), start + length + 1);
            file->Seek(start + length, 0);
            file->WriteByte('a');
        }
    }
}

TEST_F(RandomAccessTest, SequentialReadsInOddPiecesGiveTheWholeFile) {
    std::string copy = Pattern(5 * kChunk + 77);
    std::string path = MakeFile("f", copy);
    for (unsigned width : {3u, 1000u, 4096u, 65536u, 100003u}) {
        File file = Open(path);
        std::string all;
        for (std::string part; !(part = Take(*file.Get(), width)).empty();) all += part;
        EXPECT_EQ(all == copy, true) << width;
    }
}

TEST_F(RandomAccessTest, ReadsAndWritesAtRandomAgreeWithAReferenceCopy) {
    std::mt19937 random(20240229);
    std::string copy;
    File file = Open(Path("f"), QXFIO_OUTPUT | QXFIO_RANDOM);
    for (int step = 0; step < 4000; ++step) {
        unsigned width = random() % 4 ? random() % 20 : kWidths[random() % std::size(kWidths)];
        size_t at = random() % (copy.size() + 5000);
        // Half of the steps start close to a seam.
        if (random() % 2) at = at / kChunk * kChunk + kChunk - 10 + random() % 20;
        if (at > 6 * kChunk) at %= 6 * kChunk;
        file->Seek((long long)at, 0);
        if (random() % 2) {
            std::string bytes = Pattern(width, unsigned(step));
            file->Write(bytes.data(), width);
            if (width && copy.size() < at + width) copy.resize(at + width, '\0');
            copy.replace(at, width && at < copy.size() ? width : 0,
                         bytes.substr(0, at < copy.size() ? width : 0));
        } else {
            std::string expected = Expected(copy, at, width);
            ASSERT_EQ(Take(*file.Get(), width) == expected, true)
                << "step " << step << " at " << at << " width " << width;
        }
        ASSERT_EQ(file->GetLength(), copy.size()) << "step " << step;
    }
    file.Release();
    EXPECT_EQ(ContentOf(Path("f")) == copy, true);
}
