// The translations of an old version of a program, taken over to the texts of a new one.
#ifndef QXTRANSLATE_MODEL_TRANSLATION_MERGE_H
#define QXTRANSLATE_MODEL_TRANSLATION_MERGE_H

#include "tools/qxtranslate/model/po/file.h"

namespace qx {

struct MergeCounts {
    unsigned same = 0;       // the same text: as it was
    unsigned suggested = 0;  // fuzzy, with the old text beside
    unsigned missing = 0;
    unsigned obsolete = 0;  // translations of texts that are gone
};

// The texts, places and notes of `fresh`, the header and the translator's comments of `old`. A text
// that is the same keeps its translation, also one for a single place as long as the text stands
// there. Others get one as a suggestion, which is fuzzy: of a text that differs in marks and case
// only; of a similar one that stood in the same place; of a very similar one.
PoFile Merge(const PoFile& old, const PoFile& fresh, MergeCounts* counts);

// How alike two texts are, from 0 to 1, by their pairs of neighbouring letters.
double Similarity(std::string_view a, std::string_view b);

}  // namespace qx

#endif
