#include "app/NoctaApp.h"
#include "app/SharedInstances.h"
#include "platform/Desktop.h"
#include "ui/WidgetViews.h"

int main() {
    const auto session = nocta::makeDesktop();
    if (session.desktop == nullptr) {
        return session.exitStatus;
    }
    nocta::SharedInstances instances(*session.desktop, NOCTA_API_BASE);
    nocta::WidgetViews views(instances);
    nocta::NoctaApp app(instances, views);
    return app.run();
}
