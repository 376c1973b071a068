// Random trees, and what must come back of them from each place and form: the table of losses is
// written from the rules of the places, not from their code.
#ifndef QXCORE_TESTS_PARAM_BACK_ENDS_DIFFERENTIAL_MODEL_H
#define QXCORE_TESTS_PARAM_BACK_ENDS_DIFFERENTIAL_MODEL_H

#include "fuzz/fuzz_driver.h"

#include <qxcore.h>

#include <string>
#include <vector>

namespace model {

struct Value {
    std::string name;
    CQXVariant value;
    bool readable = true;  // listed otherwise, and GetValue answers 0
};

struct Tree {
    std::string name;  // empty at the root
    std::vector<Value> values;
    std::vector<Tree> children;
};

// What happens to a tree in a place or form. Everything else comes back as it was.
struct Losses {
    // Values that are refused, so that nothing stands under their names.
    bool blobs = false;
    bool objects = false;
    size_t longestName = ~size_t(0);       // in UTF-16 units; longer ones are refused, children too
    bool childrenWithAValuesName = false;  // the value takes their place
    bool valuesWithAChildsName = false;    // the child takes their place
    // Values that change.
    bool asText = false;            // a byte is 0, a flag 0 or 1, reals have 14 digits
    bool endBlanks = false;         // of texts
    bool behindSemicolons = false;  // of texts
    // Values that are listed and cannot be read, or that are not there at all.
    bool bytesWithLetters = false;  // in their hexadecimal digits
    bool emptyTexts = false;
    bool unreadableIsAbsent = false;
    // What comes besides, or is not listed.
    bool marker = false;            // every node has an empty value "@" unless it has another one
    bool singleByteLeaves = false;  // of the root, with no child of their own
};

Losses OfMemory();
Losses OfIniFile();  // the live node
Losses OfRegistry();
Losses OfStorage();
Losses OfStorageByValuesFirst();  // where the values of a node come before its children
Losses OfIniText();               // what one of the writers writes and the reader reads
Losses OfStream();

// The tree as it stands in the place.
Tree Kept(const Tree& tree, const Losses& losses);
// The tree as a copy takes it along: what cannot be read arrives as empty.
Tree Copied(Tree tree);

// With at most so many children of the root and of each of them.
Tree RandomTree(Random& random, unsigned children);
Tree Read(IParam* node);
void Write(const Tree& tree, IParam* node);

// One line, sorted: two trees are the same when their lines are.
std::string Line(const Tree& tree);

}  // namespace model

#endif
