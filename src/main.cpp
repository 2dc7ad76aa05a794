#include "app/NoctaApp.h"
#include "app/SharedInstances.h"
#include "platform/Desktop.h"
#include "ui/WidgetViews.h"

namespace {
/// The values are set when the build is configured.
constexpr nocta::Bundle bundle = {.shortVersionString = NOCTA_VERSION,
                                  .version = NOCTA_BUILD,
                                  .apiBase = NOCTA_API_BASE,
                                  .feedUrl = NOCTA_FEED_URL,
                                  .publicEdKey = NOCTA_PUBLIC_ED_KEY,
                                  .isPackageManaged = NOCTA_PACKAGE_MANAGED};
} // namespace

int main() {
    const auto session = nocta::makeDesktop(bundle);
    if (session.desktop == nullptr) {
        return session.exitStatus;
    }
    nocta::SharedInstances instances(*session.desktop);
    nocta::WidgetViews views(instances);
    nocta::NoctaApp app(instances, views);
    return app.run();
}
