// The loader and saver: a looper with a thread of its own that does every read,
// write and removal of layer files, so that no window ever waits on the disk.
//
// Loading makes the items one by one while holding the lock of the layer's
// looper (the item factory asks the layer's manager what kind of item to make),
// hands them to the layer in posted replies, and lets go of the lock for 20 ms
// after each item so the window can draw and take input. A cancel is not a
// message it handles: while a load runs, the loader looks for the cancel in its
// own queue before each line. A load keeps no state between messages; a layer
// resumes by asking again with "start" set to the items it already has.
#ifndef GLIMROW_IO_SLAVE_H
#define GLIMROW_IO_SLAVE_H

#include <Directory.h>
#include <Looper.h>

class LayerInfo;

class IOSlave : public BLooper {
public:
    IOSlave();
    virtual ~IOSlave();

    virtual void MessageReceived(BMessage* message);

    void LoadLayer(BMessage* message);
    void SaveLayer(BMessage* message);
    void DeleteLayer(BMessage* message);

    // Looks in the queue for a cancel of this layer's load; removes it and
    // answers false (stop) when there is one.
    bool CheckQueue(LayerInfo* layer);
    // Posts the reply to the layer; when that cannot be done the items it lists
    // are deleted. Either way the reply is left without "items".
    void ProcessMessage(BMessage* reply, LayerInfo* layer);

private:
    BDirectory fLayersFolder;
};

#endif // GLIMROW_IO_SLAVE_H
