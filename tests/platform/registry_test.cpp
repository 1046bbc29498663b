#include "platform/registry.h"
#include "support/text_printing.h"

#include <QStringList>

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <thread>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

constexpr QStringView key = u"Software\\Test";

class RegistryTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(root_.makeFolders()); }

    QTemporaryDir folder_;
    const DeviceRoot root_{folder_.path()};
};

QStringList names(Registry &registry) {
    QStringList all;
    const auto values = registry.values(key);
    for (qsizetype i = 0; values && i < values->size(); ++i)
        all.append(values->at(i).name);
    return all;
}

TEST_F(RegistryTest, ValuesKeepTheirTypesAndTheirOrderOverARestart) {
    {
        Registry registry(root_);
        registry.write(key, u"zebra", quint32{0xFFFFFFFF});
        registry.write(key, u"apple", QStringLiteral("Smörgås 'quoted' 😀"));
        registry.write(key, u"mango", quint32{0});
        registry.write(u"Software\\Other", u"apple", quint32{1});
        registry.write(key, u"zebra", quint32{7}); // keeps its place
    }
    Registry registry(root_);
    EXPECT_EQ(names(registry), (QStringList{u"zebra"_s, u"apple"_s, u"mango"_s}));
    EXPECT_EQ(registry.read(key, u"zebra"), RegistryValue(quint32{7}));
    EXPECT_EQ(registry.read(key, u"apple"), RegistryValue(u"Smörgås 'quoted' 😀"_s));
    EXPECT_TRUE(registry.remove(key, u"zebra"));
    EXPECT_FALSE(registry.remove(key, u"zebra"));
    EXPECT_EQ(registry.read(key, u"zebra"), std::nullopt);
}

TEST_F(RegistryTest, ABatchIsWrittenWholeOrNotAtAll) {
    Registry registry(root_);
    Registry reader(root_);
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

TEST_F(RegistryTest, CountsOfConcurrentWritersAddUp) {
    constexpr quint32 rounds = 50;
    Registry(root_).write(key, u"count", quint32{0});
    const auto count = [this] {
        Registry registry(root_);
        for (quint32 i = 0; i < rounds; ++i) {
            Registry::Batch batch(registry);
            const auto value = registry.read(key, u"count");
            registry.write(key, u"count", std::get<quint32>(*value) + 1);
            EXPECT_TRUE(batch.commit());
            EXPECT_TRUE(registry.flush()) << "what is stored must not be told to have failed";
        }
    };
    std::thread one(count);
    std::thread other(count);
    one.join();
    other.join();
    EXPECT_EQ(Registry(root_).read(key, u"count"), RegistryValue(2 * rounds));
}

} // namespace
} // namespace tidebrook
