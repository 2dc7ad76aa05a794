#include "backends/linux/x11/ColorMatrices.h"
#include "backends/linux/x11/FactoryRamps.h"
#include "backends/linux/x11/X11ColorMatrixFilter.h"
#include "backends/linux/x11/X11Session.h"

#include <algorithm>
#include <cstring>
#include <random>

// Tests the notes, which are stored in properties of the root window. Any client can write to these
// properties.

namespace nocta {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Numbers = std::vector<std::uint32_t>;

constexpr auto rampsProperty = "_NOCTA_FACTORY_RAMPS";
constexpr auto matricesProperty = "_NOCTA_FACTORY_MATRICES";

GammaRamp rampOf(const XClient::Ramp& ramp) {
    return {.red = ramp[0], .green = ramp[1], .blue = ramp[2]};
}

class FactoryNotesTest : public ::testing::TestWithParam<XServer::Kind> {
protected:
    X11Session session{GetParam()};
    xcb_connection_t* x = session.connection.get();
    xcb_window_t root = session.connection.root();
    DisplayId display = session.list().at(0);
    xcb_randr_crtc_t crtc = session.client.activeCrtcs().at(0);
    XClient::Ramp factory = calibration(256, 0.8, {0.97, 1.0, 0.9});
    Numbers colored = {0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1};
    std::mt19937 random{20240229};

    void SetUp() override {
        session.client.setRamp(crtc, factory);
        session.client.setOutputProperty("CTM", colored);
    }

    std::uint32_t below(std::uint32_t limit) {
        return static_cast<std::uint32_t>(random() % limit);
    }

    Bytes randomBytes() {
        Bytes bytes(below(5000));
        std::ranges::generate(bytes, [&] { return static_cast<std::uint8_t>(below(256)); });
        return bytes;
    }
    /// Returns the note with a random bit flipped or the end cut off.
    Bytes damaged(Bytes note) {
        if (below(2) == 0) {
            note[below(static_cast<std::uint32_t>(note.size()))] ^=
                static_cast<std::uint8_t>(1U << below(8));
        } else {
            note.resize(note.size() - 4 * (1 + below(200)));
        }
        return note;
    }
    Bytes rampNote(const FactoryRamps& ramps) {
        storeFactoryRamps(x, root, ramps);
        session.connection.synchronize();
        return session.client.rootProperty(rampsProperty);
    }
    Bytes matrixNote(const ColorMatrix& matrix) {
        FactoryMatrices matrices;
        for (std::uint32_t i = 0; i < 12; ++i) {
            matrices.emplace(static_cast<xcb_randr_output_t>(display) + i, matrix);
        }
        storeFactoryMatrices(x, root, matrices);
        session.connection.synchronize();
        return session.client.rootProperty(matricesProperty);
    }

    /// Dims the display, restores it and expects the property with the notes to be gone.
    void expectJunkToBeHarmless() {
        session.set(display, X11Session::tables({0.5F, 0.5F, 0.5F}));
        const auto shown = session.client.ramp(crtc);
        EXPECT_NEAR(shown[1].back(), (factory[1][127] + factory[1][128]) / 2.0, 1);
        const auto kept = readFactoryRamps(x, root);
        EXPECT_EQ(kept.size(), 1U) << "only the note for this CRTC should remain";
        EXPECT_TRUE(kept.contains(crtc) && kept.at(crtc).red == factory[0]);
        session.gammaOutput.displayRestoreColorSyncSettings();
        EXPECT_EQ(session.client.ramp(crtc), factory);
        EXPECT_TRUE(session.client.rootProperty(rampsProperty).empty());
    }
    void expectColors() {
        for (const auto output : session.client.activeOutputs()) {
            EXPECT_EQ(session.client.outputProperty("CTM", output), colored);
        }
    }
    void expectJunkInMatricesToBeHarmless() {
        {
            X11ColorMatrixFilter filter(session.connection, session.displays,
                                        session.notificationCenter, session.guardian);
            session.settle();
            expectColors();
            filter.setOn(true);
            session.settle();
            EXPECT_NE(session.client.outputProperty("CTM", session.client.activeOutputs()[0]),
                      colored);
        }
        session.settle();
        expectColors();
        EXPECT_TRUE(session.client.rootProperty(matricesProperty).empty());
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, FactoryNotesTest,
                         ::testing::Values(XServer::Kind::xvfb, XServer::Kind::xorgDummy),
                         [](const auto& instance) {
                             return instance.param == XServer::Kind::xvfb ? "Xvfb" : "XorgDummy";
                         });

TEST_P(FactoryNotesTest, RampsAreReadAsStoredAndReplaceEarlierRamps) {
    storeFactoryRamps(x, root, {{crtc, rampOf(factory)}});
    auto zeros = rampOf(factory);
    for (auto* const channel : {&zeros.red, &zeros.green, &zeros.blue}) {
        std::ranges::fill(*channel, std::uint16_t{0});
    }
    storeFactoryRamps(x, root, {{crtc, zeros}});
    const auto kept = readFactoryRamps(x, root);
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_EQ(kept.at(crtc).red, zeros.red)
        << "a ramp of zeros should be read as stored, because a new server can have one";
    storeFactoryRamps(x, root, {});
    EXPECT_TRUE(readFactoryRamps(x, root).empty());
    EXPECT_TRUE(session.client.rootProperty(rampsProperty).empty());
}

TEST_P(FactoryNotesTest, OnlyRampsOfTheWrongSizeAreIgnored) {
    const GammaRamp small = {.red = {0, 65535}, .green = {0, 65535}, .blue = {0, 65535}};
    const xcb_randr_crtc_t unknown = crtc + 1000;
    storeFactoryRamps(x, root, {{crtc, rampOf(factory)}, {unknown, rampOf(factory)}});
    const auto kept = readFactoryRamps(x, root);
    EXPECT_EQ(kept.size(), 1U);
    EXPECT_TRUE(kept.contains(crtc));
    storeFactoryRamps(x, root, {{crtc, small}});
    expectJunkToBeHarmless();
}

TEST_P(FactoryNotesTest, NoteOfAnotherFormatVersionOrLengthIsIgnored) {
    const auto note = rampNote({{crtc, rampOf(factory)}});
    auto otherVersion = note;
    ++otherVersion[0];
    auto otherChecksum = note;
    ++otherChecksum[4];
    const auto shorter = Bytes(note.begin(), note.end() - 4);
    for (const auto& [format, bytes] :
         std::vector<std::pair<std::uint8_t, Bytes>>{{32, otherVersion},
                                                     {32, otherChecksum},
                                                     {32, shorter},
                                                     {16, note},
                                                     {8, note},
                                                     {32, Bytes(4096, 0)},
                                                     {16, Bytes(4096, 0)},
                                                     {32, Bytes(4, 1)}}) {
        session.client.setRootProperty(rampsProperty, format, bytes);
        EXPECT_TRUE(readFactoryRamps(x, root).empty());
        expectJunkToBeHarmless();
        session.client.setRootProperty(matricesProperty, format, bytes);
        expectJunkInMatricesToBeHarmless();
    }
}

TEST_P(FactoryNotesTest, RandomBytesAreNeverReadAsANote) {
    const auto ramps = rampNote({{crtc, rampOf(factory)}});
    ColorMatrix matrix{};
    matrix.fill(7);
    const auto matrices = matrixNote(matrix);
    constexpr std::array<std::uint8_t, 3> formats = {8, 16, 32};
    for (int i = 0; i < 1000; ++i) {
        const auto isDamaged = below(2) == 0;
        const auto format = isDamaged ? std::uint8_t{32} : formats.at(below(formats.size()));
        session.client.setRootProperty(rampsProperty, format,
                                       isDamaged ? damaged(ramps) : randomBytes());
        session.client.setRootProperty(matricesProperty, format,
                                       isDamaged ? damaged(matrices) : randomBytes());
        ASSERT_TRUE(readFactoryRamps(x, root).empty()) << i;
        ASSERT_TRUE(readFactoryMatrices(x, root).empty()) << i;
        if (i % 50 == 0) {
            expectJunkToBeHarmless();
            expectJunkInMatricesToBeHarmless();
        }
    }
}

} // namespace
} // namespace nocta
