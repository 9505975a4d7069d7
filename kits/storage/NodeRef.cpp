// node_ref: a (device, inode) pair.
#include <Node.h>

node_ref::node_ref() : device((dev_t)-1), node((ino_t)-1) {}

node_ref::node_ref(dev_t device, ino_t node) : device(device), node(node) {}

node_ref::node_ref(const node_ref& other) : device(other.device), node(other.node) {}

bool node_ref::operator==(const node_ref& other) const {
    return device == other.device && node == other.node;
}

bool node_ref::operator!=(const node_ref& other) const {
    return !(*this == other);
}

bool node_ref::operator<(const node_ref& other) const {
    if (device != other.device)
        return device < other.device;
    return node < other.node;
}

node_ref& node_ref::operator=(const node_ref& other) {
    device = other.device;
    node = other.node;
    return *this;
}
