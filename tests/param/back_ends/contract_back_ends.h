// The back ends of IParam, side by side: where a tree lives, and in what they differ by design.
//
// docs/parameter-trees.md says the same to users.
#ifndef QXCORE_TESTS_PARAM_BACK_ENDS_CONTRACT_BACK_ENDS_H
#define QXCORE_TESTS_PARAM_BACK_ENDS_CONTRACT_BACK_ENDS_H

#include "param/tree_text.h"

#include <iosfwd>
#include <vector>

// An empty tree in a place of its own, which goes with it.
struct Place {
    Place() = default;
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;
    virtual ~Place() = default;

    // Another root over the same data; null where there is no such thing. REQUIRES: no node of the
    // place is held.
    virtual ParamPtr Reopen() { return nullptr; }

    ParamPtr root;
};

// What a call answers for a child that is held already.
enum class Second { sameObject, anotherObject, refused };
// What a child of an empty name is.
enum class Nameless { childLikeOthers, nodeItself, refused };

// Trees are told as SortedTree tells them: of the marker of an ini section nothing is said.
struct BackEnd {
    const char* name;
    std::unique_ptr<Place> (*make)();
    bool keeps;  // Reopen finds what was written

    // Paths, each over an empty root.
    const char* createOfPath;     // CreateSubParam("a\b")
    const char* openOfPath;       // OpenSubParam("a\b", 1)
    bool openOfPathAnswers;       // ... and whether that is a node
    const char* openOfPathWithA;  // the same with a child "a"
    bool openOfPathWithAAnswers;
    const char* setOfPath;          // SetValue("a\b", 7)
    const char* setOfDeepPath;      // SetValue("a\b\c", 7)
    const char* deleteValueOfPath;  // a child "a", SetValue("a\b", 7), DeleteValue("a\b")
    const char* deleteChildOfPath;  // a child "a" with a child "b", DeleteSubParam("a\b")
    const char* setOfEmptyLevel;    // SetValue("\x", 7)

    // Names.
    const char* nameOfNone;    // what a value of no name is listed as
    bool noneIsDeletedByNone;  // DeleteValue("") deletes it
    bool oneNameSpace;         // a value takes the place of a child of its name
    Nameless childOfNoName;
    const char* refusedInNames;  // characters with which a name is refused
    const char* cutInNames;      // ... and with which a value is not found again

    // Children.
    const char* createOfExisting;    // "a{x=5:1 b{y=5:2}}", then CreateSubParam("a")
    bool createOfExistingIsTheSame;  // ... answers the object that is held
    Second second;                   // OpenSubParam of a child that is held

    // Values.
    std::vector<unsigned short> withoutForm;  // the types that SetValue refuses
    std::vector<unsigned short> losingForm;   // the types that come back as zero
    size_t longestText;
    bool emptyTextIsMissing;
    bool missClears;          // GetValue of a missing name clears the variant
    bool missOfPathClears;    // the same for a missing level
    int deleteAnswers;        // DeleteValue of a value ...
    int deleteOfMissAnswers;  // ... and of none

    // Clear.
    const char* clear;         // "x=5:1 a{y=5:2 b{z=5:3}}", then Clear of the root
    const char* clearOfChild;  // the same, then Clear of "a"
    bool clearedGoesOn;        // SetValue behind Clear stores

    // The object.
    std::vector<const qx_type_info*> answers;  // to QueryInterface
    bool enumerationIsLive;                    // a walk sees what is added behind its start
};

// The row by its name, for the messages of GoogleTest.
std::ostream& operator<<(std::ostream& out, const BackEnd& backEnd);

const std::vector<BackEnd>& BackEnds();

// Values first, then children, each sorted by name: "X=5:1 a{x=10:abc}". A child that is listed and
// does not open is "a{?}".
std::string SortedTree(IParam* node);

#endif
