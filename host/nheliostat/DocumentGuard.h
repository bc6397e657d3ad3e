#pragma once

#include <chrono>
#include <functional>

namespace nheliostat::host {

/**
 * What can be asked of the document of a browser widget before it ends; implemented by browser widgets that
 * can ask theirs. User-interface thread. No call waits.
 */
class DocumentGuard
{
public:
    enum class Answer {
        Agrees,  //!< nothing is lost
        Objects, //!< something would be lost
        Silent   //!< it does not answer
    };
    using Done = std::function<void(Answer)>;

    /** How long a document may take to save what it can, and then to say how it stands. */
    static constexpr std::chrono::milliseconds savingLimit{2000};
    static constexpr std::chrono::milliseconds answerLimit{2000};
    /** How long its last handlers may take. */
    static constexpr std::chrono::milliseconds closingLimit{1000};

    virtual ~DocumentGuard() = default;

    /** Whether there is a document to be asked. */
    virtual bool hasDocument() const = 0;
    /** Whether something would be lost now, as far as the document has reported. */
    virtual bool holdsUnsaved() const = 0;
    /**
     * Asks the document, which first saves what it can. It lives on, whatever it answers. `done` is called
     * once, at the latest after both limits, with `Agrees` when there is no document any more.
     */
    virtual void askDocument(Done done) = 0;
    /**
     * Has the browser close the document, so that its last handlers run. It may object once more unless
     * `regardless`, and lives on then. `done` is called once, never with `Silent`; one that does not answer
     * counts as closed.
     */
    virtual void closeDocument(bool regardless, Done done) = 0;
    /** The document may be left without a question: what was asked for next is the user's wish. */
    virtual void allowLeaving() = 0;
};

} // namespace nheliostat::host
