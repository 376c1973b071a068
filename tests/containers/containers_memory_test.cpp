// What the containers do when the n-th allocation fails.
#include "support/allocation_failure.h"

#include <gtest/gtest.h>
#include <qxcore.h>

#include <memory>

namespace {

struct Note {
    static inline int live = 0;
    Note() { ++live; }
    ~Note() { --live; }
};

class Counted : public CQXUnknownImpl<IQXUnknown> {
public:
    unsigned Refs() {
        AddRef();
        return Release();
    }
};

}  // namespace

TEST(ContainersMemoryTest, AFailedAdditionLeavesTheMapAsItWas) {
    using Map = CTMap<const char*, int>;
    unsigned failures = FailEachAllocation(
        [] {
            auto map = std::make_unique<Map>();
            map->SetAt("one", 1);
            return map;
        },
        [](auto& map) { map->SetAt("two", 2); },
        [](auto& map) {
            int value = 0;
            EXPECT_EQ(map->count, 1u);
            EXPECT_EQ(map->Lookup("two", value), 0);
            EXPECT_EQ(map->Lookup("one", value), 1);
            EXPECT_EQ(value, 1);
            EXPECT_EQ(map->SetAt("two", 2), 1);
            EXPECT_EQ(map->count, 2u);
        });
    EXPECT_EQ(failures, 2u);  // the key and the node
}
