#include "xslt/Uri.h"

#include <gtest/gtest.h>

TEST(UriTest, AFileUriIsPercentEncoded) {
    EXPECT_EQ(fileUri("/a/b.xml"), "file:///a/b.xml");
    EXPECT_EQ(fileUri("/a b/100%/#?.xml"), "file:///a%20b/100%25/%23%3F.xml");
    EXPECT_EQ(fileUri("/\xC3\xA4\xFF"), "file:///%C3%A4%FF");
    EXPECT_EQ(fileUri("/a:b&c=d+e,f;g@h!i$j'k(l)m*n~o_p-q"),
              "file:///a:b&c=d+e,f;g@h!i$j'k(l)m*n~o_p-q");
    EXPECT_EQ(fileUri("/[a]\\\"<>^`{|}"), "file:///%5Ba%5D%5C%22%3C%3E%5E%60%7B%7C%7D");
    EXPECT_EQ(fileUri(""), "");
}

TEST(UriTest, AFileUriNamesItsPath) {
    for (const char* path : {"/a/b.xml", "/a b/100%/#?.xml", "/\xC3\xA4\xFF", "/", "/[a]\\\""}) {
        EXPECT_EQ(pathOfFileUri(fileUri(path)), path);
    }
    EXPECT_EQ(pathOfFileUri("file:/a"), "/a");
    EXPECT_EQ(pathOfFileUri("file://localhost/a"), "/a");
    EXPECT_EQ(pathOfFileUri("FILE:///a"), "/a");
    EXPECT_EQ(pathOfFileUri("file:///a%2Fb%41%2f"), "/a/bA/");
    EXPECT_EQ(pathOfFileUri("file:///a%zz%4g%4"), "/a%zz%4g%4"); // no escapes
    EXPECT_EQ(pathOfFileUri("file:///a?query#fragment"), "/a");
    EXPECT_EQ(pathOfFileUri("file:///%00"), std::string("/\0", 2));
}

TEST(UriTest, OtherUrisNameNoPath) {
    for (const char* uri : {"", "/a", "a", "http:///a", "file://host/a", "files:///a", "mem:/a"}) {
        EXPECT_EQ(pathOfFileUri(uri), std::nullopt) << uri;
    }
}

TEST(UriTest, ASchemeIsInLowerCase) {
    EXPECT_EQ(uriScheme("HTTP://h/"), "http");
    EXPECT_EQ(uriScheme("a+b-c.1:x"), "a+b-c.1");
    EXPECT_EQ(uriScheme("urn:x"), "urn");
    for (const char* uri : {"", ":", "1a:", "/a:b", "a/b:c", "#a:b", "a b:c", "a"}) {
        EXPECT_EQ(uriScheme(uri), "") << uri;
    }
}

/** The examples of RFC 3986, 5.4. */
TEST(UriTest, ReferencesAreResolvedAsTheStandardShows) {
    const std::pair<const char*, const char*> examples[] = {
        {"g:h", "g:h"},
        {"g", "http://a/b/c/g"},
        {"./g", "http://a/b/c/g"},
        {"g/", "http://a/b/c/g/"},
        {"/g", "http://a/g"},
        {"//g", "http://g"},
        {"?y", "http://a/b/c/d;p?y"},
        {"g?y", "http://a/b/c/g?y"},
        {"#s", "http://a/b/c/d;p?q#s"},
        {"g#s", "http://a/b/c/g#s"},
        {"g?y#s", "http://a/b/c/g?y#s"},
        {";x", "http://a/b/c/;x"},
        {"g;x", "http://a/b/c/g;x"},
        {"g;x?y#s", "http://a/b/c/g;x?y#s"},
        {"", "http://a/b/c/d;p?q"},
        {".", "http://a/b/c/"},
        {"./", "http://a/b/c/"},
        {"..", "http://a/b/"},
        {"../", "http://a/b/"},
        {"../g", "http://a/b/g"},
        {"../..", "http://a/"},
        {"../../", "http://a/"},
        {"../../g", "http://a/g"},
        {"../../../g", "http://a/g"},
        {"../../../../g", "http://a/g"},
        {"/./g", "http://a/g"},
        {"/../g", "http://a/g"},
        {"g.", "http://a/b/c/g."},
        {".g", "http://a/b/c/.g"},
        {"g..", "http://a/b/c/g.."},
        {"..g", "http://a/b/c/..g"},
        {"./../g", "http://a/b/g"},
        {"./g/.", "http://a/b/c/g/"},
        {"g/./h", "http://a/b/c/g/h"},
        {"g/../h", "http://a/b/c/h"},
        {"g;x=1/./y", "http://a/b/c/g;x=1/y"},
        {"g;x=1/../y", "http://a/b/c/y"},
        {"g?y/./x", "http://a/b/c/g?y/./x"},
        {"g?y/../x", "http://a/b/c/g?y/../x"},
        {"g#s/./x", "http://a/b/c/g#s/./x"},
        {"g#s/../x", "http://a/b/c/g#s/../x"},
        {"http:g", "http:g"},
    };
    for (const auto& [reference, expected] : examples) {
        EXPECT_EQ(resolveUri(reference, "http://a/b/c/d;p?q"), expected) << reference;
    }
}

TEST(UriTest, AnAbsoluteReferenceLosesItsDotsWhereItHasAHierarchy) {
    EXPECT_EQ(resolveUri("file:///a/./b/../c", ""), "file:///a/c");
    EXPECT_EQ(resolveUri("file:/a/../b", "http://h/"), "file:/b");
    EXPECT_EQ(resolveUri("urn:a/../b", ""), "urn:a/../b");
}

TEST(UriTest, OtherSchemesAreResolvedAlike) {
    EXPECT_EQ(resolveUri("b", "mem:/x/a"), "mem:/x/b");
    EXPECT_EQ(resolveUri("b", "mem:a"), "mem:b");
    EXPECT_EQ(resolveUri("./b", "mem:a"), "mem:b");
    EXPECT_EQ(resolveUri("../b", "mem:a"), "mem:b");
    EXPECT_EQ(resolveUri(".", "mem:a"), "mem:");
    EXPECT_EQ(resolveUri("..", "mem:a"), "mem:");
    EXPECT_EQ(resolveUri("b", "http://h"), "http://h/b");
    EXPECT_EQ(resolveUri("", "urn:a"), "urn:a");
}

TEST(UriTest, ABaseThatIsNotAbsoluteIsOneOfTheWorkingDirectory) {
    const std::string here = fileUri(std::filesystem::current_path()) + "/";
    EXPECT_EQ(resolveUri("b", ""), here + "b");
    EXPECT_EQ(resolveUri("b", "x/a"), here + "x/b");
    EXPECT_EQ(resolveUri("../b", "x/y/a"), here + "x/b");
    EXPECT_EQ(resolveUri("/b", ""), "file:///b");
    EXPECT_EQ(resolveUri("b", "/x/a"), "file:///x/b");
    EXPECT_EQ(resolveUri("", ""), here);
}
