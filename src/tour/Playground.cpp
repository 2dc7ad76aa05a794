#include "tour/Playground.h"

#include <QComboBox>
#include <QGraphicsView>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include <array>
#include <chrono>
#include <string>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr auto frameTime = 33ms;
constexpr std::array speeds = {1, 60, 3600};

const RunningApplication notes{"com.example.notes", "Notes"};
const RunningApplication meeting{"com.apple.FaceTime", "FaceTime"};
const RunningApplication browser{"com.google.Chrome", "Google Chrome"};

} // namespace

/// Shows the scene as the user sees it and passes mouse events to it.
class Playground::Displays final : public QGraphicsView {
public:
    explicit Displays(LiveDesktop& live) : QGraphicsView(&live.scene()), live_(live) {
        setFrameShape(QFrame::NoFrame);
        setAlignment(Qt::AlignLeft | Qt::AlignTop);
        setViewportUpdateMode(FullViewportUpdate);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(viewport());
        painter.fillRect(viewport()->rect(), QColor(32, 32, 36));
        for (const auto& display : live_.desktop.displays.all()) {
            painter.drawImage(mapFromScene(QPointF(display.bounds.x, display.bounds.y)),
                              live_.scene().picture(display.id));
        }
    }

    /// During a break, sends the space key to the covers.
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Space && !live_.desktop.overlayWindows.windows().empty()) {
            live_.desktop.overlayWindows.press(spaceKeyCode);
        } else {
            QGraphicsView::keyPressEvent(event);
        }
    }

private:
    LiveDesktop& live_;
};

Playground::Playground() {
    live_.launch();
    live_.scene().refresh();
    setWindowTitle(QStringLiteral("Nocta on a virtual desktop"));
    auto* const column = new QVBoxLayout(this);
    auto* const tools = new QHBoxLayout;
    column->addLayout(tools);
    addTools(*tools);
    displays_ = new Displays(live_);
    displays_->setSceneRect(live_.scene().itemsBoundingRect());
    column->addWidget(displays_);
    displays_->setFocus();
    resize(displays_->sceneRect().size().toSize() + QSize(40, 80));
    connect(&timer_, &QTimer::timeout, this, [this] { tick(); });
    sinceTick_.start();
    timer_.start(frameTime);
}

Playground::~Playground() {
    timer_.stop();
    delete displays_; // it refers to the scene
    live_.quit();
}

void Playground::addTools(QHBoxLayout& tools) {
    auto& desktop = live_.desktop;
    addTool(tools, "Brightness key down", [&] { desktop.keyboard.pressBrightnessDown(); });
    addTool(tools, "Brightness key up", [&] { desktop.keyboard.pressBrightnessUp(); });
    for (const auto& application : {notes, meeting, browser}) {
        addTool(tools, QString::fromStdString(application.localizedName + " in front"),
                [&desktop, application] { desktop.workspace.bringToFront(application); });
    }
    const auto display = desktop.displays.display(LiveDesktop::external);
    addTool(tools, "Unplug", [&] { desktop.displays.unplug(LiveDesktop::external); });
    addTool(tools, "Plug in", [&desktop, display] {
        if (desktop.displays.all().size() == 1) {
            desktop.displays.plug(display);
        }
    });
    auto* const speed = new QComboBox;
    for (const auto factor : speeds) {
        speed->addItem(QStringLiteral("%1×").arg(factor));
    }
    connect(speed, &QComboBox::activated, this,
            [this](int index) { speed_ = speeds.at(static_cast<std::size_t>(index)); });
    tools.addStretch();
    tools.addWidget(speed);
}

void Playground::addTool(QHBoxLayout& tools, const QString& text, std::function<void()> action) {
    auto* const button = new QPushButton(text);
    button->setFocusPolicy(Qt::NoFocus); // the virtual desktop keeps the keyboard
    connect(button, &QPushButton::clicked, this, std::move(action));
    tools.addWidget(button);
}

void Playground::tick() {
    live_.desktop.runLoop.advance(speed_ * std::chrono::milliseconds(sinceTick_.restart()));
    live_.scene().refresh();
    displays_->viewport()->update();
}

} // namespace nocta
