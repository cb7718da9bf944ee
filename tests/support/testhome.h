#pragma once

#include <QString>
#include <QTemporaryDir>

namespace TestSupport {

/// A private home for one test program: Documents, configuration and data lie in a fresh folder that
/// goes with the program, so that a test never sees or touches its user's project files.
///
/// Make it before the application object: Qt reads the environment once. The test mode of
/// QStandardPaths is no substitute, since it does not redirect Documents.
/// It also sets the locale to C.UTF-8 and, unless another platform is asked for, draws offscreen.
class TestHome
{
public:
    TestHome();
    Q_DISABLE_COPY(TestHome)

    /// The private home, without a trailing separator.
    QString path() const { return m_dir.path(); }
    /// The private Documents folder, without a trailing separator. It exists.
    QString documentsPath() const;

private:
    QTemporaryDir m_dir;
};

} // namespace TestSupport
