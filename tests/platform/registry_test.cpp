#include "platform/sql/registry.h"
#include "support/device_folders.h"

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

constexpr QStringView key = u"Software\\Test";

class RegistryTest : public DeviceFolders {};

TEST_F(RegistryTest, ABatchIsWrittenWholeOrNotAtAll) {
    Registry registry(device_);
    Registry reader(device_);
    {
        Registry::Batch batch(registry);
        registry.write(key, u"first", quint32{1});
        EXPECT_EQ(reader.read(key, u"first"), std::nullopt);
    }
    EXPECT_EQ(registry.read(key, u"first"), std::nullopt);
    {
        Registry::Batch batch(registry);
        registry.write(key, u"first", quint32{1});
        registry.write(key, u"second", quint32{2});
        EXPECT_FALSE(Registry::Batch(reader).isOpen()) << "one at a time";
        EXPECT_TRUE(batch.commit());
    }
    EXPECT_EQ(reader.read(key, u"first"), RegistryValue(1U));
    EXPECT_EQ(reader.read(key, u"second"), RegistryValue(2U));
}

} // namespace
} // namespace tidebrook
