#include "backends/linux/bus/ReducedMotion.h"

namespace nocta {

namespace {

// Where desktops keep the wish, and where those do that know it as a switch for animations only.
const auto appearance = QStringLiteral("org.freedesktop.appearance");
const auto gnomeInterface = QStringLiteral("org.gnome.desktop.interface");

constexpr auto reducedMotion = 1U;

} // namespace

ReducedMotion::ReducedMotion()
    : settings_({appearance, gnomeInterface}, [this](PortalSettings::Settings settings) {
          const auto wish = settings[appearance].value(QStringLiteral("reduced-motion"));
          const auto animations =
              settings[gnomeInterface].value(QStringLiteral("enable-animations"));
          isWished_ = (wish.typeId() == QMetaType::UInt && wish.toUInt() == reducedMotion) ||
                      (animations.typeId() == QMetaType::Bool && !animations.toBool());
      }) {}

} // namespace nocta
