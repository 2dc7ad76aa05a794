#include "backends/linux/bus/ReducedMotion.h"

namespace nocta {

namespace {

// The portal's namespaces. The first contains the setting. The second contains a switch for
// animations, for desktops that do not have the setting.
const auto appearance = QStringLiteral("org.freedesktop.appearance");
const auto gnomeInterface = QStringLiteral("org.gnome.desktop.interface");

constexpr auto reducedMotion = 1U;

} // namespace

ReducedMotion::ReducedMotion()
    : settings_({appearance, gnomeInterface}, [this](PortalSettings::Settings settings) {
          const auto setting = settings[appearance].value(QStringLiteral("reduced-motion"));
          const auto animations =
              settings[gnomeInterface].value(QStringLiteral("enable-animations"));
          isRequested_ =
              (setting.typeId() == QMetaType::UInt && setting.toUInt() == reducedMotion) ||
              (animations.typeId() == QMetaType::Bool && !animations.toBool());
      }) {}

} // namespace nocta
