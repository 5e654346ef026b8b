// Query parameters, the URI builder and data URIs.
#include <gtest/gtest.h>

#include <vek/core/CByteArray.h>
#include <vek/core/CString.h>
#include <vek/core/Result.h>
#include <vek/io/CDataUri.h>
#include <vek/io/CUri.h>
#include <vek/io/CUriBuilder.h>
#include <vek/io/CUriParameterCollection.h>

#include <string>

using namespace Quorvex::Vek;

namespace {

RObject<CString> Text(const char* text)
{
    return RObject<CString>(new CString(text));
}

std::string Str(CString* text)
{
    return text ? std::string(text->GetChars()) : std::string("(null)");
}

std::string Owned(CString* text)
{
    RObject<CString> held(text);
    return Str(held);
}

} // namespace

TEST(UriPartsTest, ParsesQueriesIntoParameters)
{
    struct {
        const char* query;
        const char* pairs; // "name=value;" for each parameter, in order
    } cases[] = {
        {"a=1&b=2", "a=1;b=2;"},
        {"?a=1&b=2#frag", "a=1;b=2;"},
        {"name=John+Doe&city=New%20York", "name=John Doe;city=New York;"},
        {"flag&&=orphan&x=", "flag=;x=;"},
        {"k=v=w&k=second", "k=v=w;k=second;"},
        {"bad=%zz%4", "bad=%zz%4;"},
        {"enc%26name=%3D", "enc&name==;"},
        {"", ""},
    };
    for (const auto& c : cases) {
        RObject<CUriParameterCollection> parameters(CUriParameterCollection::Create());
        ASSERT_EQ(parameters->AddQuery(Text(c.query)), RESULT_OK) << c.query;
        std::string pairs;
        for (int32_t i = 0; i < parameters->GetCount(); ++i)
            pairs += Str(parameters->Get(i)->GetName()) + "=" + Str(parameters->Get(i)->GetValue()) + ";";
        EXPECT_EQ(pairs, c.pairs) << c.query;
    }
}

TEST(UriPartsTest, LooksUpParametersByNameAndAsNumbers)
{
    RObject<CUri> uri(CUri::CreateWithEscapedUrl("http://h/p?Offset=-42&size=2147483648&n=7x&first=1&first=2"));
    RObject<CUriParameterCollection> parameters(CUriParameterCollection::CreateWithUri(uri));
    ASSERT_TRUE(parameters);
    EXPECT_EQ(parameters->GetCount(), 5);
    EXPECT_EQ(parameters->Get("offset")->GetValueAsInt32(0), -42);
    EXPECT_EQ(parameters->Get("size")->GetValueAsInt32(-1), -1);
    EXPECT_EQ(parameters->Get("n")->GetValueAsInt32(5), 5);
    EXPECT_EQ(Str(parameters->GetValue("first")), "1");
    EXPECT_EQ(parameters->Get("absent"), nullptr);
    EXPECT_EQ(parameters->GetValue("absent"), nullptr);
    EXPECT_EQ(parameters->Get(5), nullptr);
    EXPECT_EQ(parameters->Get(-1), nullptr);
    EXPECT_EQ(parameters->Add(static_cast<CUriParameter*>(nullptr)), RESULT_ARGUMENT_NULL);
    EXPECT_EQ(parameters->Add("a+b=c%2Bd"), RESULT_OK);
    EXPECT_EQ(Str(parameters->GetValue("a b")), "c+d");
    EXPECT_EQ(CUriParameterCollection::CreateWithUri(nullptr), nullptr);
}

TEST(UriPartsTest, BuilderRoundTripsThroughTheParser)
{
    RObject<CUriParameterCollection> parameters(CUriParameterCollection::Create());
    ASSERT_EQ(parameters->Add("start time", "00:01:02;03"), RESULT_OK);
    ASSERT_EQ(parameters->Add("a&b", "x=y+z"), RESULT_OK);
    RObject<CString> extra(CUriBuilder::BuildExtraInfoString(parameters, "t=10"));
    EXPECT_EQ(Str(extra), "?start%20time=00%3A01%3A02%3B03&a%26b=x%3Dy%2Bz#t%3D10");
    EXPECT_EQ(Owned(CUriBuilder::BuildExtraInfoString(nullptr, nullptr)), "");
    EXPECT_EQ(Owned(CUriBuilder::BuildExtraInfoString(nullptr, "f")), "#f");

    RObject<CUriBuilder> builder(CUriBuilder::Create("http", "media.example.com", 8080, "dir/a b.mov", parameters, nullptr));
    ASSERT_TRUE(builder);
    ASSERT_TRUE(builder->SetUserName("me@home"));
    RObject<CUri> uri(builder->GetUri(true));
    ASSERT_TRUE(uri);
    EXPECT_EQ(Owned(uri->GetAbsoluteUri()),
              "http://me%40home@media.example.com:8080/dir/a%20b.mov?start%20time=00%3A01%3A02%3B03&a%26b=x%3Dy%2Bz");
    EXPECT_EQ(Owned(uri->GetPath()), "/dir/a b.mov");
    EXPECT_EQ(uri->GetPort(), 8080);

    RObject<CUriParameterCollection> parsed(CUriParameterCollection::CreateWithUri(uri));
    ASSERT_TRUE(parsed);
    EXPECT_EQ(Str(parsed->GetValue("start time")), "00:01:02;03");
    EXPECT_EQ(Str(parsed->GetValue("a&b")), "x=y+z");

    // Back from the URI: the same parts, the default port left out.
    RObject<CUri> source(CUri::CreateWithEscapedUrl("https://h:443/p/q.wav#f"));
    RObject<CUriBuilder> again(CUriBuilder::Create(source));
    ASSERT_TRUE(again);
    EXPECT_EQ(Str(again->GetHost()), "h");
    EXPECT_EQ(Str(again->GetPath()), "/p/q.wav");
    EXPECT_EQ(Str(again->GetExtraInfo()), "#f");
    RObject<CUri> rebuilt(again->GetUri(false));
    EXPECT_EQ(Owned(rebuilt->GetAbsoluteUri()), "https://h/p/q.wav#f");
}

TEST(UriPartsTest, BuilderRefusesWhatCannotBeAUrl)
{
    RObject<CUriBuilder> empty(CUriBuilder::Create());
    EXPECT_EQ(empty->GetUri(false), nullptr);
    RObject<CUriBuilder> huge(CUriBuilder::Create("http", "h", 0, std::string(2100, 'p').c_str(), nullptr));
    EXPECT_EQ(huge->GetUri(false), nullptr);
    EXPECT_EQ(CUriBuilder::Create(static_cast<CUri*>(nullptr)), nullptr);
    RObject<CUri> notUrl(CUri::CreateWithEscapedUrl("not a url"));
    EXPECT_EQ(CUriBuilder::Create(notUrl), nullptr);
}

TEST(UriPartsTest, DataUris)
{
    const char* null = nullptr;
    struct {
        const char* text;
        const char* mediaType; // null: the URI is refused
        std::string data;
    } cases[] = {
        {"data:,A%20brief%20note", "text/plain;charset=US-ASCII", "A brief note"},
        {"data:text/vtt;base64,V0VCVlRU", "text/vtt", "WEBVTT"},
        {"DATA:image/png;BASE64,iVBO", "image/png", "\x89PN"},
        {"data:;charset=utf-8,%C3%A9", "text/plain;charset=utf-8", "\xC3\xA9"},
        {"data:application/octet-stream;base64,AAE=", "application/octet-stream", std::string("\0\1", 2)},
        {"data:text/plain;base64,QQ", "text/plain", "A"},
        {"data:text/plain,no-comma-issue", "text/plain", "no-comma-issue"},
        {"data:text/plain;base64,Q", null, ""},
        {"data:text/plain;base64,QQ==QQ", null, ""},
        {"data:text/plain;base64,*A==", null, ""},
        {"data:text/plain,%4", null, ""},
        {"data:text/plain", null, ""},
        {"http://h/x,y", null, ""},
    };
    for (const auto& c : cases) {
        RObject<CDataUri> uri(CDataUri::CreateWithDataUri(c.text));
        if (!c.mediaType) {
            EXPECT_FALSE(uri) << c.text;
            continue;
        }
        ASSERT_TRUE(uri) << c.text;
        EXPECT_TRUE(uri->IsType(CDataUri::Type));
        EXPECT_EQ(Owned(uri->GetMediaType()), c.mediaType) << c.text;
        RObject<CByteArray> data(uri->GetData());
        ASSERT_TRUE(data);
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(data->GetData()), size_t(data->GetLength())), c.data)
            << c.text;
    }
    RObject<CDataUri> vtt(CDataUri::CreateWithDataUri("data:Text/VTT;charset=utf-8,x"));
    EXPECT_TRUE(vtt->IsMediaType("text/vtt"));
    EXPECT_FALSE(vtt->IsMediaType("text"));
    EXPECT_FALSE(vtt->IsMediaType(nullptr));
}
