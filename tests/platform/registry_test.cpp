#include "platform/sql/registry.h"
#include "support/device_folders.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

constexpr QStringView key = u"Software\\Test";

class RegistryTest : public DeviceFolders {};

QStringList names(Registry &registry) {
    QStringList all;
    const auto values = registry.values(key);
    for (qsizetype i = 0; values && i < values->size(); ++i)
        all.append(values->at(i).name);
    return all;
}

TEST_F(RegistryTest, ValuesKeepTheirTypesAndTheirOrderOverARestart) {
    {
        Registry registry(device_);
        registry.write(key, u"zebra", quint32{0xFFFFFFFF});
        registry.write(key, u"apple", QStringLiteral("Smörgås 'quoted' 😀"));
        registry.write(key, u"mango", quint32{0});
        registry.write(u"Software\\Other", u"apple", quint32{1});
        registry.write(key, u"zebra", quint32{7}); // keeps its place
    }
    Registry registry(device_);
    EXPECT_EQ(names(registry), (QStringList{u"zebra"_s, u"apple"_s, u"mango"_s}));
    EXPECT_EQ(registry.read(key, u"zebra"), RegistryValue(quint32{7}));
    EXPECT_EQ(registry.read(key, u"apple"), RegistryValue(u"Smörgås 'quoted' 😀"_s));
    EXPECT_TRUE(registry.remove(key, u"zebra"));
    EXPECT_FALSE(registry.remove(key, u"zebra"));
    EXPECT_EQ(registry.read(key, u"zebra"), std::nullopt);
}

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
    EXPECT_EQ(names(reader), (QStringList{u"first"_s, u"second"_s}));
}

} // namespace
} // namespace tidebrook
