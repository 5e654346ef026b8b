// One table of URL cases for both builds: on Windows the answers come from
// WinINet and the shell's URL helpers, elsewhere from uriparser. Where the
// platforms legitimately differ (the local forms of "file" URLs), a case
// carries one expected value per platform.
#include <gtest/gtest.h>

#include <vek/core/CString.h>
#include <vek/io/CUri.h>
#include <vek/io/Uri.h>

#include <string>
#include <vector>

using namespace Quorvex::Vek;

namespace {

// Expectation markers: a null pointer expects a null result; kAny skips.
const char* const kAny = "\x01(any)";

struct Expect {
    const char* posix;
    const char* windows;
    Expect(const char* both) : posix(both), windows(both) {}
    Expect(const char* p, const char* w) : posix(p), windows(w) {}
    const char* Here() const { return VEK_PLATFORM_WINDOWS ? windows : posix; }
};

// Adopts a returned string and renders it for comparison.
std::string Take(CString* text, bool& isNull)
{
    RObject<CString> held(text);
    isNull = !held;
    return held ? std::string(held->GetChars()) : std::string();
}

void Check(const char* what, CString* actual, const Expect& expected)
{
    const char* want = expected.Here();
    bool isNull = false;
    const std::string got = Take(actual, isNull);
    if (want == kAny)
        return;
    if (!want)
        EXPECT_TRUE(isNull) << what << " should be null, got \"" << got << "\"";
    else if (isNull)
        ADD_FAILURE() << what << " is null, expected \"" << want << "\"";
    else
        EXPECT_EQ(got, want) << what;
}

RObject<CString> Text(const char* text)
{
    return RObject<CString>(new CString(text));
}

std::string Repeat(char c, size_t n)
{
    return std::string(n, c);
}

struct CrackCase {
    std::string url;
    Expect scheme, host;
    uint16_t port;
    Expect user, password, path, extra, query, fragment, last, extension, local;
    bool isFile, isUnc;
};

std::vector<CrackCase> CrackCases()
{
    const char* n = nullptr;
    static const std::string host255 = Repeat('h', 255);
    static const std::string scheme31 = Repeat('s', 31);
    return {
        {"http://example.com/p/a.mov?x=1#f", "http", "example.com", 80, "", "", "/p/a.mov", "?x=1#f",
         "x=1", "f", "a.mov", "mov", "/p/a.mov", false, false},
        {"https://user:pw@Example.com:8443/a%20b/c.mp4?q=a%26b&r=2#frag", "https", "Example.com", 8443,
         "user", "pw", "/a b/c.mp4", "?q=a%26b&r=2#frag", "q=a%26b&r=2", "frag", "c.mp4", "mp4",
         "/a b/c.mp4", false, false},
        {"ftp://ftp.example.org/pub/file.mxf", "ftp", "ftp.example.org", 21, "", "", "/pub/file.mxf", "",
         "", "", "file.mxf", "mxf", "/pub/file.mxf", false, false},
        {"rtsp://cam.local:554/stream", "rtsp", "cam.local", 554, "", "", "/stream", "", "", "",
         "stream", n, "/stream", false, false},
        {"mms://media.example.com/live", "mms", "media.example.com", 0, "", "", "/live", "", "", "",
         "live", n, "/live", false, false},
        // An empty path after the host reads as the root.
        {"http://h", "http", "h", 80, "", "", "/", "", "", "", "", n, "/", false, false},
        // A decoded '?' ends the path like a real one.
        {"http://h/a%3Fb?x", "http", "h", 80, "", "", "/a", "?x", "x", "", "a", n, "/a", false, false},
        {"http://h/dir.v2/file", "http", "h", 80, "", "", "/dir.v2/file", "", "", "", "file", n,
         "/dir.v2/file", false, false},
        {"http://h/a/./b/../c.wav", "http", "h", 80, "", "", "/a/c.wav", "", "", "", "c.wav", "wav",
         "/a/c.wav", false, false},
        {"http://h/p?", "http", "h", 80, "", "", "/p", "?", "", "", "p", n, "/p", false, false},
        // A port must fit in 16 bits; a larger one makes the URL invalid
        // rather than being cut (99999 would read as 34463, 4294967376 as 80).
        {"http://h:65535/", "http", "h", 65535, "", "", "/", "", "", "", "", n, "/", false, false},
        {"http://h:65536/", n, n, 0, n, n, n, n, n, n, n, n, n, false, false},
        {"http://h:99999/", n, n, 0, n, n, n, n, n, n, n, n, n, false, false},
        {"http://h:4294967376/", n, n, 0, n, n, n, n, n, n, n, n, n, false, false},
        {"http://h:" + Repeat('9', 40) + "/x", n, n, 0, n, n, n, n, n, n, n, n, n, false, false},
        // A '?' after the '#' belongs to the fragment.
        {"http://h/p#f?x", "http", "h", 80, "", "", "/p", "#f?x", "", "f?x", "p", n, "/p", false, false},
        {"http://h/p?q#f?x#y", "http", "h", 80, "", "", "/p", "?q#f?x#y", "q", "f?x#y", "p", n, "/p",
         false, false},
        {"http://h#f", "http", "h", 80, "", "", kAny, "#f", "", "f", kAny, n, kAny, false, false},
        {"http://user@h/", "http", "h", 80, "user", "", "/", "", "", "", "", n, "/", false, false},
        // File URLs: Windows answers with drive and UNC paths.
        {"file:///C:/media/clip.mov", "file", "", 0, "", "", {"/C:/media/clip.mov", "C:\\media\\clip.mov"},
         "", "", "", {"clip.mov", "C:\\media\\clip.mov"}, "mov",
         {"/C:/media/clip.mov", "C:\\media\\clip.mov"}, true, false},
        {"file:///tmp/a%20b.wav", "file", "", 0, "", "", {"/tmp/a b.wav", kAny}, "", "", "", kAny, kAny,
         {"/tmp/a b.wav", "\\tmp\\a b.wav"}, true, false},
        {"file://server/share/clip.mov", "file", "server", 0, "", "", {"/share/clip.mov", kAny}, "", "",
         "", kAny, kAny, {"//server/share/clip.mov", "\\\\server\\share\\clip.mov"}, true, true},
        {"FILE:///C:/x", "FILE", "", 0, "", "", kAny, "", "", "", kAny, kAny, {"/C:/x", "C:\\x"}, true,
         false},
        // Not a URL at all.
        {"notaurl", n, n, 0, n, n, n, n, n, n, n, n, n, false, false},
        // Over-long components fail alone; the others still answer.
        {"http://" + Repeat('h', 255) + "/x", "http", host255.c_str(), 80, "", "", "/x", "", "", "",
         "x", n, "/x", false, false},
        {"http://" + Repeat('h', 256) + "/x", "http", n, 80, "", "", "/x", "", "", "", "x", n, "/x", false,
         false},
        {scheme31 + "://h/x", scheme31.c_str(), "h", 0, "", "", "/x", "", "", "", "x", n, "/x",
         false, false},
        {Repeat('s', 32) + "://h/x", n, "h", 0, "", "", "/x", "", "", "", "x", n, "/x", false, false},
        {"http://h/" + Repeat('p', 2047), "http", "h", 80, "", "", n, "", "", "", n, n, n, false, false},
        {"http://h/?" + Repeat('x', 2047), "http", "h", 80, "", "", "/", n, n, n, "", n, "/", false, false},
        {"http://" + Repeat('u', 128) + "@h/", "http", "h", 80, n, "", "/", "", "", "", "", n, "/", false,
         false},
    };
}

} // namespace

TEST(UriTest, CracksTheSharedTableOfUrls)
{
    for (const CrackCase& c : CrackCases()) {
        SCOPED_TRACE(c.url.substr(0, 80));
        RObject<CUri> uri(CUri::CreateWithEscapedUrl(c.url.c_str()));
        ASSERT_TRUE(uri);
        Check("scheme", uri->GetScheme(), c.scheme);
        Check("host", uri->GetHost(), c.host);
        EXPECT_EQ(uri->GetPort(), c.port);
        Check("user", uri->GetUserName(), c.user);
        Check("password", uri->GetPassword(), c.password);
        Check("path", uri->GetPath(), c.path);
        Check("extra", uri->GetExtraInfo(), c.extra);
        Check("query", uri->GetQuery(), c.query);
        Check("fragment", uri->GetFragment(), c.fragment);
        Check("last", uri->GetLastPathComponent(), c.last);
        Check("extension", uri->GetPathExtension(), c.extension);
        Check("local", uri->GetLocalPath(), c.local);
        EXPECT_EQ(uri->IsFile(), c.isFile);
        EXPECT_EQ(uri->IsUnc(), c.isUnc);

        // The statics answer the same for the bare text.
        RObject<CString> text(Text(c.url.c_str()));
        Check("static scheme", CUri::GetScheme(text), c.scheme);
        Check("static path", CUri::GetPath(text), c.path);
        EXPECT_EQ(CUri::GetPort(text), c.port);
    }
}

TEST(UriTest, StaticQueriesOfNullGiveNull)
{
    EXPECT_EQ(CUri::GetScheme(nullptr), nullptr);
    EXPECT_EQ(CUri::GetPath(nullptr), nullptr);
    EXPECT_EQ(CUri::GetPort(nullptr), 0);
    EXPECT_EQ(CUri::CreateWithUrl(static_cast<const char*>(nullptr)), nullptr);
    EXPECT_FALSE(CUri::IsAbsoluteUri(nullptr));
}

TEST(UriTest, NormalisesUrlsLikeTheWindowsServices)
{
    const char* n = nullptr;
    const std::string fits = "http://h/" + Repeat('a', 2074);
    struct Case {
        std::string input;
        Expect output;
    } cases[] = {
        {"http://h/a b", "http://h/a%20b"},
        {"http://h/a%20b", "http://h/a%20b"},
        // Escaping stops at the query or fragment.
        {"http://h/a b?c d#e f", "http://h/a%20b?c d#e f"},
        {"http://h/x^y{z}|`[]\"<>w", "http://h/x%5Ey%7Bz%7D%7C%60%5B%5D%22%3C%3Ew"},
        {"http://h/100%", "http://h/100%"},
        {"http://h/a%2Fb", "http://h/a/b"},
        {"http://h/a&b=c;d", "http://h/a%26b=c;d"},
        {"http://h/\xC3\xA9\x7F", "http://h/%C3%A9%7F"},
        {"HTTP://H/a b", "HTTP://H/a%20b"},
        {"http:\\\\h\\x", "http://h/x"},
        {"rtsp://h/a\\b c?d e", "rtsp://h/a%5Cb%20c?d e"},
        // File URLs escape '#' and get their slashes normalised.
        {"file:///C:\\dir\\a b#c.mov", "file:///C:/dir/a%20b%23c.mov"},
        {"file://localhost/c:/x", "file:///c:/x"},
        {"file:/x", "file:///x"},
        {"file://server/share/x", "file://server/share/x"},
        {"relative/a b.mov", "relative/a%20b.mov"},
        // 2,083 characters fit, 2,084 do not, nor does what escaping grows past the limit.
        {fits, fits.c_str()},
        {"http://h/" + Repeat('a', 2075), n},
        {"http://h/" + Repeat('a', 2070) + "     ", n},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.input.substr(0, 80));
        RObject<CUri> uri(CUri::CreateWithUrl(c.input.c_str()));
        Check("url", uri ? uri->GetAbsoluteUri() : nullptr, c.output);
    }

    RObject<CUri> formatted(CUri::CreateWithFormat("http://%s:%d/%s", "h", 8080, "a b.mov"));
    ASSERT_TRUE(formatted);
    Check("formatted", formatted->GetAbsoluteUri(), "http://h:8080/a%20b.mov");
}

TEST(UriTest, CombinesRelativeReferences)
{
    const char* n = nullptr;
    const std::string longBase = "http://h/" + Repeat('a', 2000) + "/";
    struct Case {
        std::string base; // empty: no base
        std::string relative;
        Expect output;
    } cases[] = {
        {"http://a.com/b/c/d;p?q#f", "c.mov", "http://a.com/b/c/c.mov"},
        {"http://a.com/b/c/d;p?q#f", "../c.mov", "http://a.com/b/c.mov"},
        {"http://a.com/b/c/d;p?q#f", "../../../../c.mov", "http://a.com/c.mov"},
        {"http://a.com/b/c/d;p?q#f", "./x/./y/../z", "http://a.com/b/c/x/z"},
        {"http://a.com/b/c/d;p?q#f", "/abs/p", "http://a.com/abs/p"},
        {"http://a.com/b/c/d;p?q#f", "#frag", "http://a.com/b/c/d;p?q#frag"},
        {"http://a.com/b/c/d;p?q#f", "//other.host/p", "http://other.host/p"},
        {"http://a.com/b/c/d;p?q#f", "https://other/p", "https://other/p"},
        {"http://a.com/b/c/d;p?q#f", "g;x?y#s", "http://a.com/b/c/g;x?y#s"},
        {"http://a.com/b/c/d;p?q#f", "a b.mov", "http://a.com/b/c/a%20b.mov"},
        {"http://a.com/b/c/d;p?q#f", "a%20b.mov", "http://a.com/b/c/a%20b.mov"},
        // Escaping stops at the query, as when normalising.
        {"http://h/d/", "a&b c.mov?q r&s#f g", "http://h/d/a%26b%20c.mov?q r&s#f g"},
        {"http://h/d/", "x^y", "http://h/d/x%5Ey"},
        {"http://h/d/e?q", "#f g", "http://h/d/e?q#f g"},
        {"http://a.com/b/c/d", "../../x/./y/../z?q#f", "http://a.com/x/z?q#f"},
        {"http://h", "x", "http://h/x"},
        {"ftp://h/a/b", "c", "ftp://h/a/c"},
        {"mms://h/a/b", "../c", "mms://h/c"},
        {"file:///C:/media/dir/x.mov", "../y.mov", "file:///C:/media/y.mov"},
        {"file://server/share/dir/x.mov", "../y.mov", "file://server/share/y.mov"},
        {"", "http://h/a b", "http://h/a%20b"},
        {longBase, Repeat('r', 100), n},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.base.substr(0, 60) + " + " + c.relative.substr(0, 40));
        RObject<CUri> base(c.base.empty() ? nullptr : CUri::CreateWithEscapedUrl(c.base.c_str()));
        RObject<CUri> combined(CUri::CreateWithRelativeUrl(base, c.relative.c_str()));
        Check("combined", combined ? combined->GetAbsoluteUri() : nullptr, c.output);
    }
}

TEST(UriTest, ConvertsLocalPathsBothWays)
{
    struct Case {
        bool windows; // which build the case is written for
        std::string path;
        const char* url;
        const char* back; // GetLocalPath of the URL
        bool isUnc;
    } cases[] = {
        {true, "C:\\media\\a b.mov", "file:///C:/media/a%20b.mov", "C:\\media\\a b.mov", false},
        {true, "\\\\server\\share\\a.mov", "file://server/share/a.mov", "\\\\server\\share\\a.mov", true},
        {true, "C:\\a#b%c.mov", "file:///C:/a%23b%25c.mov", "C:\\a#b%c.mov", false},
        {false, "/media/a b.mov", "file:///media/a%20b.mov", "/media/a b.mov", false},
        {false, "//server/share/a.mov", "file://server/share/a.mov", "//server/share/a.mov", true},
        {false, "/m/a#b%c.mov", "file:///m/a%23b%25c.mov", "/m/a#b%c.mov", false},
    };
    for (const Case& c : cases) {
        if (c.windows != bool(VEK_PLATFORM_WINDOWS))
            continue;
        SCOPED_TRACE(c.path);
        RObject<CUri> uri(CUri::CreateWithLocalPath(c.path.c_str()));
        ASSERT_TRUE(uri);
        Check("url", uri->GetAbsoluteUri(), c.url);
        Check("local", uri->GetLocalPath(), c.back);
        EXPECT_TRUE(uri->IsFile());
        EXPECT_EQ(uri->IsUnc(), c.isUnc);
    }

    // A URL given as a path stays as it is; a local path over 255 characters fails.
    RObject<CUri> already(CUri::CreateWithLocalPath("http://h/x"));
    ASSERT_TRUE(already);
    Check("url", already->GetAbsoluteUri(), "http://h/x");
    RObject<CUri> longPath(CUri::CreateWithEscapedUrl(("file:///C:/" + Repeat('a', 300)).c_str()));
    Check("long local", longPath->GetLocalPath(), nullptr);
    EXPECT_FALSE(longPath->IsUnc());
}

TEST(UriTest, NonUtf8FileNamesKeepTheirBytes)
{
    if (VEK_PLATFORM_WINDOWS)
        GTEST_SKIP() << "Windows file names are UTF-16; a lone 0xE9 byte names no file there";
    // A Latin-1 name, escaped: the local path is the raw bytes, so the file
    // that the URL names is the one that gets opened.
    RObject<CUri> fromUrl(CUri::CreateWithEscapedUrl("file:///tmp/caf%E9%FF.wav"));
    Check("local", fromUrl->GetLocalPath(), "/tmp/caf\xE9\xFF.wav");
    RObject<CUri> fromPath(CUri::CreateWithLocalPath("/m/caf\xE9.wav"));
    ASSERT_TRUE(fromPath);
    Check("url", fromPath->GetAbsoluteUri(), "file:///m/caf%E9.wav");
    Check("back", fromPath->GetLocalPath(), "/m/caf\xE9.wav");
}

TEST(UriTest, SchemeAndAbsoluteTests)
{
    RObject<CUri> uri(CUri::CreateWithEscapedUrl("HTTPS://h/x"));
    EXPECT_TRUE(uri->IsScheme(CUri::UriSchemeHttps));
    EXPECT_FALSE(uri->IsScheme(CUri::UriSchemeHttp));
    EXPECT_FALSE(uri->IsScheme(nullptr));
    EXPECT_TRUE(CUri::IsScheme("rtsp://cam/x", CUri::UriSchemeRtsp));
    EXPECT_FALSE(CUri::IsScheme("notaurl", CUri::UriSchemeRtsp));
    EXPECT_TRUE(uri->IsAbsoluteUri());

    struct {
        const char* text;
        bool absolute;
    } cases[] = {{"http://h/", true}, {"x+y.z-w:rest", true}, {"C:\\x", false},
                 {"a/b", false},      {"1http://h", false},   {"", false}};
    for (const auto& c : cases)
        EXPECT_EQ(CUri::IsAbsoluteUri(Text(c.text)), c.absolute) << c.text;
}

TEST(UriTest, PathAndExtraInfoJoinsTheDecodedPathAndTheExtraInfo)
{
    RObject<CUri> uri(CUri::CreateWithEscapedUrl("http://h/a%20b.mov?x=1#f"));
    Check("path+extra", uri->GetPathAndExtraInfo(), "/a b.mov?x=1#f");
    RObject<CUri> bad(CUri::CreateWithEscapedUrl("nothing"));
    Check("path+extra", bad->GetPathAndExtraInfo(), nullptr);
}

TEST(UriTest, PublicHandleForwardsAndOwns)
{
    Uri uri = Uri::CreateWithUrl("http://h:8080/a b.mov?x=1");
    ASSERT_FALSE(uri.IsNull());
    EXPECT_EQ(uri.ToObject()->GetReferenceCount(), 1);
    EXPECT_EQ(std::string(uri.GetAbsoluteUri().GetChars()), "http://h:8080/a%20b.mov?x=1");
    EXPECT_EQ(uri.GetPort(), 8080);
    EXPECT_EQ(std::string(uri.GetPathExtension().GetChars()), "mov");
    Uri copy = uri;
    EXPECT_EQ(uri.ToObject()->GetReferenceCount(), 2);
    Uri next = Uri::CreateWithRelativeUrl(copy, "b.mov");
    EXPECT_EQ(std::string(next.GetAbsoluteUri().GetChars()), "http://h:8080/b.mov");

    Uri none;
    EXPECT_TRUE(none.GetScheme().IsNull());
    EXPECT_EQ(none.GetPort(), 0);
    EXPECT_FALSE(none.IsFile());
    EXPECT_TRUE(Uri::CreateWithUrl(nullptr).IsNull());
}
