#pragma once

#include <QString>

/** The service's domains in this deployment. */
class NDomainMgr
{
public:
    virtual ~NDomainMgr() = default;

    /**
     * The URL of a key: "quill" (documents site), "quill_api", "quill_api_spec", "drive", "root". Without
     * trailing slash. Empty when not configured.
     */
    virtual QString getDomainUrl(const QString& key) const = 0;
    virtual bool isIntranet() const = 0;
    /** The main domain whose requests get the session's cookies. */
    virtual QString mainDomain() const = 0;
    /** The bare host name that requests to the documents service name as their origin. */
    virtual QString documentsServiceHost() const = 0;
};
