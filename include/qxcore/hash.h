// The text hashes of the library: 32 bits, h * 257 + the byte as a signed char, with wrap-around.
//
// Bytes above 127 subtract. Four bytes are taken in one step, so that a step waits for one multiplication and not
// for four; the values are those of the byte-by-byte rule.
#ifndef QXCORE_HASH_H
#define QXCORE_HASH_H

inline constexpr unsigned kQXHashBase = 257;

// A text's hash, and 257 to the power of its length: what it takes to put other text before it.
struct QXTextHash {
    unsigned hash;
    unsigned power;

    // The hash of prefix + text from the hash of the prefix, without building the text.
    constexpr unsigned Behind(unsigned prefixHash) const { return prefixHash * power + hash; }
};

struct QXPlainByte {
    static constexpr unsigned Of(char byte) { return static_cast<unsigned>(static_cast<signed char>(byte)); }
};

// Lower case for 'A' to 'Z' alone; a byte above 127 stays itself, whatever the code page.
struct QXFoldedByte {
    static constexpr unsigned Of(char byte) {
        return QXPlainByte::Of(byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte);
    }
};

template <class Byte>
constexpr QXTextHash QXHashBytes(const char* text) {
    constexpr unsigned k1 = kQXHashBase, k2 = k1 * k1, k3 = k2 * k1, k4 = k3 * k1;
    unsigned hash = 0, power = 1;
    for (;; text += 4) {
        if (!text[0]) return {hash, power};
        unsigned a = Byte::Of(text[0]);
        if (!text[1]) return {hash * k1 + a, power * k1};
        unsigned b = Byte::Of(text[1]);
        if (!text[2]) return {hash * k2 + (a * k1 + b), power * k2};
        unsigned c = Byte::Of(text[2]);
        if (!text[3]) return {hash * k3 + (a * k2 + b * k1 + c), power * k3};
        hash = hash * k4 + (a * k3 + b * k2 + c * k1 + Byte::Of(text[3]));
        power *= k4;
    }
}

// "Name" and "name" differ.
constexpr QXTextHash QXHashText(const char* text) {
    return QXHashBytes<QXPlainByte>(text);
}
// "Name" and "name" are the same: the rule of parameter names.
constexpr QXTextHash QXHashFolded(const char* text) {
    return QXHashBytes<QXFoldedByte>(text);
}

#endif
