#pragma once

#include "platform/base/device_root.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace tidebrook {

/// A test with a device of its own that has its folders and no file.
class DeviceFolders : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(device_.makeFolders()); }

    QTemporaryDir folder_;
    const DeviceRoot device_{folder_.filePath(QStringLiteral("device"))};
};

} // namespace tidebrook
