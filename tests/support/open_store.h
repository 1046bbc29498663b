#pragma once

#include "test_device/test_device.h"

#include <gtest/gtest.h>

namespace tidebrook {

/// A test with an open store.
class OpenStore : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(device_.store->Open()); }

    FeedStore &store() { return *device_.store; }
    /// What is read of an article, which marks it read.
    ArticleExtract detail(const QString &channel, const QString &title) {
        ArticleExtract found;
        EXPECT_TRUE(store().GetArticleDetail(channel, title, found));
        return found;
    }

    TestDevice device_;
};

} // namespace tidebrook
