// The key families: hosts store settings under these exact strings, so
// every key must be reachable, unique and printable.
#include <vek/media/AudioProperty.h>
#include <vek/media/CodeBookProperty.h>
#include <vek/media/ContainerProperty.h>
#include <vek/media/ContainerReaderProperty.h>
#include <vek/media/ContainerWriterProperty.h>
#include <vek/media/IndexerProperty.h>
#include <vek/media/MediaProperty.h>
#include <vek/media/VideoProperty.h>

#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <set>
#include <string>

using namespace Quorvex::Vek;

// Keys are looked up by string equality, so two constants of one family
// holding the same text would make one of them unreachable. No family has
// such a pair; names must be unique too so FindKey is unambiguous. Keys are
// plain printable ASCII without blanks.
TEST(PropertyKeys, KeysAndNamesAreUniqueAndPrintable)
{
    const PropertyKeyList lists[] = {
        MediaProperty::GetKeys(),           IndexerProperty::GetKeys(),
        AudioProperty::GetKeys(),           VideoProperty::GetKeys(),
        ContainerReaderProperty::GetKeys(), ContainerProperty::GetKeys(),
        ContainerWriterProperty::GetKeys(), CodeBookProperty::GetKeys(),
    };
    std::set<std::string> everyKey;
    int total = 0;
    for (const PropertyKeyList& list : lists) {
        std::set<std::string> keys, names;
        for (const PropertyKeyEntry& entry : list) {
            ASSERT_NE(entry.key, nullptr);
            ASSERT_NE(entry.name, nullptr);
            EXPECT_TRUE(keys.insert(entry.key).second) << "duplicate key " << entry.key;
            EXPECT_TRUE(names.insert(entry.name).second) << "duplicate name " << entry.name;
            EXPECT_GT(std::strlen(entry.key), 0u);
            for (const char* p = entry.key; *p; ++p)
                EXPECT_TRUE(std::isgraph(static_cast<unsigned char>(*p))) << entry.key;
            everyKey.insert(entry.key);
            ++total;
        }
    }
    // No key is shared between families either.
    EXPECT_EQ(static_cast<int>(everyKey.size()), total);
}

TEST(PropertyKeys, LookupMisses)
{
    PropertyKeyList list = MediaProperty::GetKeys();
    EXPECT_EQ(list.FindKey("NoSuchConstant"), nullptr);
    EXPECT_EQ(list.FindKey(nullptr), nullptr);
    EXPECT_EQ(list.FindName("no.such.key"), nullptr);
    EXPECT_EQ(list.FindName(nullptr), nullptr);
    // A key of another family is not found in this one.
    EXPECT_EQ(list.FindName("indexer.enable_video_data"), nullptr);
}

// A spot check that the walkable lists and the constants agree, on keys
// whose odd spellings are kept on purpose: a tidy-up would break hosts.
TEST(PropertyKeys, LookupAgreesWithTheConstants)
{
    struct Case {
        PropertyKeyList list;
        const char* name;
        const char* constant;
        const char* key;
    };
    const Case cases[] = {
        {AudioProperty::GetKeys(), "MpegLayer", AudioProperty::MpegLayer, "mpga.layer"},
        {ContainerWriterProperty::GetKeys(), "Mpeg2TransportPcrOnEveryPesHeader",
         ContainerWriterProperty::Mpeg2TransportPcrOnEveryPesHeader, "mpeg2.transport_stream.pcr_on_every_per_header"},
        {CodeBookProperty::GetKeys(), "PreferredFormats", CodeBookProperty::PreferredFormats, "prefered_formats"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_STREQ(c.constant, c.key);
        EXPECT_EQ(c.list.FindKey(c.name), c.constant);
        EXPECT_STREQ(c.list.FindName(c.key), c.name);
    }
}
