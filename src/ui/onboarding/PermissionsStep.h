#pragma once

#include "app/SharedInstances.h"
#include "ui/controls/Label.h"

#include <QPushButton>
#include <QWidget>

#include <functional>

namespace nocta {

/// Shows the permissions that the user can grant.
class PermissionsStep final : public QWidget {
public:
    explicit PermissionsStep(SharedInstances& instances);
};

/// A permission, with a button to request it, or with a check mark once it has been granted.
class PermissionRow final : public QWidget {
public:
    PermissionRow(const QString& icon, const QString& title, const QString& description,
                  bool isOptional, std::function<void()> action);

    void setGranted(bool isGranted);
    /// Shows why the permission cannot be requested; empty if it can.
    void setMissing(const QString& text);

private:
    QPushButton* allow_;
    QWidget* granted_;
    Label* missing_;
};

} // namespace nocta
