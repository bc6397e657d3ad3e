#pragma once

#include <QObject>
#include <QString>
#include <QUrl>
#include <QVector>

#include <functional>

namespace shell {

/** One thing that a diagnosis looks at. */
struct DiagnosisCheck
{
    enum class State { Running, Good, Bad };

    QString name;
    State state = State::Running;
    QString detail;
    qint64 ms = 0; //!< how long it took
};

/** The report that a user sends on: a line for each check. */
QString diagnosisReport(const QVector<DiagnosisCheck>& checks);

/** Looks whether what the shell needs can be reached; the checks run at the same time. */
class Diagnosis final : public QObject
{
    Q_OBJECT
public:
    struct Places
    {
        QUrl documents;
        QUrl drive;
        QString gatewayHost;
        int gatewayPort = 0;
        /** Asks the cloud service for something and calls back, at a later turn of the event loop. */
        std::function<void(std::function<void(bool success)>)> askCloudService;
    };

    explicit Diagnosis(Places places, QObject* parent = nullptr);

    /** Starts all checks anew; what is still running counts no more. */
    void start();
    const QVector<DiagnosisCheck>& checks() const { return m_checks; }
    bool isRunning() const;

Q_SIGNALS:
    void changed();

private:
    int begin(const QString& name);
    void checkUrl(const QString& name, const QUrl& url);
    void checkGateway();
    void checkCloudService();
    void end(int run, int check, bool isGood, const QString& detail, qint64 ms);

    const Places m_places;
    QVector<DiagnosisCheck> m_checks;
    int m_run = 0;
};

} // namespace shell
