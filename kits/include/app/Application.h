// BApplication: the process's main looper, run in the thread that calls Run().
//
// There is one application object per process, be_app; it is created by main(),
// run, and deleted by main() after Run() returns. Windows register with it so that
// a quit request can ask each of them first.
#ifndef _APPLICATION_H
#define _APPLICATION_H

#include <AppDefs.h>
#include <Looper.h>
#include <Messenger.h>
#include <SupportDefs.h>

class BWindow;
struct app_info;

namespace BPrivate {
class AppPrivate;
}

class BApplication : public BLooper {
public:
    // The signature must be a valid MIME string of the "application" supertype.
    // Without a status argument an invalid signature is a programmer error.
    BApplication(const char* signature);
    BApplication(const char* signature, status_t* error);
    virtual ~BApplication();

    // Archiving: the looper's fields plus "mime_sig".
    BApplication(BMessage* data);
    static BArchivable* Instantiate(BMessage* data);
    virtual status_t Archive(BMessage* data, bool deep = true) const;

    status_t InitCheck() const;

    // Runs the message loop in the calling thread (which must hold the lock, as the
    // constructing thread does) and returns once the application quits; the
    // application is then still locked by that thread, ready to be deleted.
    virtual thread_id Run();
    virtual void Quit();
    // Asks every window, in its own thread, whether it agrees to quit, and quits
    // those that do; false as soon as one refuses.
    virtual bool QuitRequested();
    virtual void Pulse();
    virtual void ReadyToRun();
    virtual void MessageReceived(BMessage* message);
    virtual void ArgvReceived(int32 argc, char** argv);
    virtual void AppActivated(bool active);
    virtual void RefsReceived(BMessage* message);
    virtual void AboutRequested();

    // Scripting
    virtual BHandler* ResolveSpecifier(BMessage* message, int32 index, BMessage* specifier,
                                       int32 what, const char* property);

    // Windows and loopers of this process.
    int32 CountWindows() const;
    BWindow* WindowAt(int32 index) const;
    int32 CountLoopers() const;
    BLooper* LooperAt(int32 index) const;

    // True until ReadyToRun() has been called.
    bool IsLaunching() const;
    // The running executable's entry_ref, the signature, the team and thread.
    status_t GetAppInfo(app_info* info) const;

    virtual void DispatchMessage(BMessage* message, BHandler* handler);
    // B_PULSE messages arrive every rate microseconds (in steps of 100 ms); 0 stops
    // them. There are none until this is called.
    void SetPulseRate(bigtime_t rate);

    virtual status_t GetSupportedSuites(BMessage* data);
    virtual status_t Perform(perform_code d, void* arg);

private:
    friend class BPrivate::AppPrivate;

    BApplication(const BApplication&);
    BApplication& operator=(const BApplication&);

    void _InitData(const char* signature, bool debuggerOnError, status_t* error);
    void _PostArguments();
    bool _QuitAllWindows(bool force);
    void _StopPulse();

    struct Private;
    Private* fPrivate;
};

extern BApplication* be_app;
extern BMessenger be_app_messenger;

#endif // _APPLICATION_H
