// BHandler: an object that receives messages in a looper's thread.
#ifndef _HANDLER_H
#define _HANDLER_H

#include <Archivable.h>
#include <OS.h>
#include <SupportDefs.h>

class BList;
class BLooper;
class BMessage;
class BMessageFilter;

namespace BPrivate {
class HandlerPrivate;
}

class BHandler : public BArchivable {
public:
    BHandler(const char* name = NULL);
    // A handler still attached to a looper removes itself from it first.
    virtual ~BHandler();

    // Archiving: the name is kept as "_name".
    BHandler(BMessage* data);
    static BArchivable* Instantiate(BMessage* data);
    virtual status_t Archive(BMessage* data, bool deep = true) const;

    // Called in the looper's thread with the looper locked. The default passes
    // the message to the next handler; at the end of the chain a sender waiting
    // for a reply gets B_MESSAGE_NOT_UNDERSTOOD.
    virtual void MessageReceived(BMessage* message);

    BLooper* Looper() const;

    // The name is copied.
    void SetName(const char* name);
    const char* Name() const;

    // Both handlers must belong to the same looper, which must be locked.
    virtual void SetNextHandler(BHandler* handler);
    BHandler* NextHandler() const;

    // Message filters. The handler owns its filters (and the list given to
    // SetFilterList) and deletes them; the looper must be locked when the
    // handler belongs to one.
    virtual void AddFilter(BMessageFilter* filter);
    virtual bool RemoveFilter(BMessageFilter* filter);
    virtual void SetFilterList(BList* filters);
    BList* FilterList();

    // Locks the handler's looper, then checks that the handler still belongs to it.
    bool LockLooper();
    // B_BAD_VALUE without a looper, B_MISMATCHED_VALUES when the handler moved to
    // another looper meanwhile, else the looper's LockWithTimeout() result.
    status_t LockLooperWithTimeout(bigtime_t timeout);
    void UnlockLooper();

    // Scripting
    virtual BHandler* ResolveSpecifier(BMessage* message, int32 index, BMessage* specifier,
                                       int32 what, const char* property);
    virtual status_t GetSupportedSuites(BMessage* data);

    virtual status_t Perform(perform_code d, void* arg);

private:
    friend class BLooper;
    friend class BPrivate::HandlerPrivate;

    BHandler(const BHandler&);
    BHandler& operator=(const BHandler&);

    void _Init(const char* name);
    void _SetLooper(BLooper* looper);
    void _SetNextHandler(BHandler* handler);

    struct Private;
    Private* fPrivate;
};

#endif // _HANDLER_H
