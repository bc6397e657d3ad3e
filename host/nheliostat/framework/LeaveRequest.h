#pragma once

#include "nheliostat/DocumentGuard.h"

#include <QObject>
#include <QPointer>
#include <QVector>

#include <functional>
#include <vector>

class NHelioAppPage;
class QMessageBox;

/** The document of a page that can be asked; null when it shows none. */
nheliostat::host::DocumentGuard* documentGuardOf(const NHelioAppPage* page);

/**
 * Asks the documents of pages whether they may end, all at once, and then the user, once, where some object
 * or do not answer. Nothing ends before all of that is settled; then the documents are closed, unless they
 * are to be loaded again. Waits nowhere. User-interface thread.
 */
class LeaveRequest final : public QObject
{
    Q_OBJECT
public:
    enum class Purpose {
        Close,  //!< the pages go
        Restart //!< the pages stay and load anew
    };
    enum class Manner {
        Ask, //!< the user decides where words would be lost
        Tell //!< nobody is asked: documents save what they can, the log says what was lost
    };
    /** What may go: all pages that the request was made for, or, when the user wants to stay, those whose
     * documents had ended by then. Pages that were deleted meanwhile are left out. */
    using Done = std::function<void(bool all, const QVector<NHelioAppPage*>& pages)>;

    LeaveRequest(const QVector<NHelioAppPage*>& pages, Purpose purpose, Manner manner, Done done,
                 QObject* parent);
    /** Without a word to the one who asked. */
    ~LeaveRequest() override;

    /** Ends with `done`, at once when there is no document to ask; the request is deleted after that. */
    void start();
    /** As if the user wanted to stay; nothing happens when that is decided already. */
    void cancel();
    /** Whether the user was asked. */
    bool wasAsked() const { return m_wasAsked; }
    Manner manner() const { return m_manner; }

private:
    using Answer = nheliostat::host::DocumentGuard::Answer;
    enum class State { Asking, Agreed, Objected, Silent, Closed };
    struct Subject
    {
        QPointer<NHelioAppPage> page;
        State state = State::Asking;
        bool regardless = false; //!< the user let it go
    };

    void takeAnswer(std::size_t index, Answer answer);
    void decide();
    void askUser(const QVector<const Subject*>& holdouts);
    void onUserAnswered(bool leaves);
    void closeDocuments();
    void takeClosed(std::size_t index, Answer answer);
    bool isSettled() const;
    void end(bool all);

    std::vector<Subject> m_subjects;
    const Purpose m_purpose;
    const Manner m_manner;
    Done m_done;
    QPointer<QMessageBox> m_question;
    bool m_wasAsked = false;
    bool m_isClosing = false;
};
