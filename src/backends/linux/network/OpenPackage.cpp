#include "backends/linux/network/OpenPackage.h"

#include "base/Translatable.h"

#include <QProcess>

#include <memory>
#include <utility>

namespace nocta {

namespace {

/// Delays the deletion of an opener until it has exited, because a running opener may be the
/// installer itself.
struct Later {
    void operator()(QProcess* opener) const {
        opener->disconnect();
        if (opener->state() == QProcess::NotRunning) {
            opener->deleteLater(); // it may be emitting a signal
        } else {
            QObject::connect(opener, &QProcess::finished, opener, &QObject::deleteLater);
        }
    }
};

} // namespace

Subscription openPackage(const std::filesystem::path& package,
                         std::function<void(const std::optional<std::string>& error)> opened) {
    std::shared_ptr<QProcess> opener(new QProcess, Later());
    const auto finish = [package, opened = std::move(opened)](bool isOpened) {
        opened(isOpened ? std::nullopt
                        : std::optional(translatable("Nocta", "The package could not be opened") +
                                        (": " + package.string())));
    };
    QObject::connect(opener.get(), &QProcess::finished, opener.get(),
                     [finish](int exitCode, QProcess::ExitStatus status) {
                         finish(status == QProcess::NormalExit && exitCode == 0);
                     });
    QObject::connect(opener.get(), &QProcess::errorOccurred, opener.get(),
                     [finish](QProcess::ProcessError error) {
                         if (error == QProcess::FailedToStart) { // `finished` follows other errors
                             finish(false);
                         }
                     });
    opener->setStandardInputFile(QProcess::nullDevice());
    opener->setStandardOutputFile(QProcess::nullDevice());
    opener->setStandardErrorFile(QProcess::nullDevice());
    opener->start(QStringLiteral("xdg-open"), {QString::fromStdString(package.string())});
    return Subscription([opener]() mutable { opener.reset(); });
}

} // namespace nocta
