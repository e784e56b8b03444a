#include <velmocore/markup/FeedRecognition.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(FeedRecognition, IsDecidedByTheFirstRoot) {
    struct {
        View text;
        bool isFeed, isComplete;
        FeedDialect dialect;
    } cases[] = {
        {u"", false, false, FeedDialect::None},
        {u"<?xml?><!-- <rss> --><RSS version=2>", true, false, FeedDialect::RSS},
        {u"<rss></rss>", true, true, FeedDialect::RSS},
        {u"</rss>", true, true, FeedDialect::RSS},
        {u"<feed/>", true, true, FeedDialect::Atom},
        {u"<feed><rss></rdf:RDF>", true, true, FeedDialect::Atom},
        {u"warning: x<Rdf:rdf><item/>", true, false, FeedDialect::RDF},
        {u"<rdf-rdf><rsss><atom:feed></feeds>", false, false, FeedDialect::None},
        {u"<!DOCTYPE html><rss>", true, false, FeedDialect::RSS},
        {u"<html><rss></rss>", false, false, FeedDialect::None},
        {u"</head><rss></rss>", false, false, FeedDialect::None},
        {u"<BODY ><rss></rss>", false, false, FeedDialect::None},
        {u"<rss><body></rss>", true, false, FeedDialect::RSS},
        {u"<rss><![CDATA[<body>]]></rss>", true, true, FeedDialect::RSS},
        {u"<rss></rss", true, false, FeedDialect::RSS},
    };
    for (const auto& [text, expected, isComplete, dialect] : cases) {
        const FeedCompleteness found = isFeedComplete(text);
        EXPECT_EQ(isFeed(text), expected) << utf8(text);
        EXPECT_EQ(found.isFeed, expected) << utf8(text);
        EXPECT_EQ(found.isComplete, isComplete) << utf8(text);
        EXPECT_EQ(found.dialect, dialect) << utf8(text);
    }
}

}  // namespace
}  // namespace velmo
