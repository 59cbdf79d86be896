#include <cstdlib>
#include <cstring>
#include <string>

#include "net/tnsnames.h"

namespace {

void releaseParts(OCIHost *node) {
  std::free(node->host);
}
void releaseParts(OCIPort *node) {
  std::free(node->port);
}
void releaseParts(OCISid *node) {
  std::free(node->sid);
}
void releaseParts(OCIAddress *node) {
  ReleaseOCIHost(node->host);
  ReleaseOCIPort(node->port);
}
void releaseParts(OCINetServiceName *node) {
  std::free(node->name);
  ReleaseOCIAddress(node->address);
  ReleaseOCISid(node->sid);
}

template <class Node>
void release(Node *node, NodeTag tag) {
  if (!node || node->tag != tag) return;
  releaseParts(node);
  std::free(node);
}

/// Zeroed memory for a node, null when out.
template <class Node>
Node *allocNode(NodeTag tag) {
  auto *node = static_cast<Node *>(std::calloc(1, sizeof(Node)));
  if (node) node->tag = tag;
  return node;
}

/// A node of one text, which is freed when there is none to take it.
template <class Node>
Node *nodeOf(NodeTag tag, char *Node::*field, char *text) {
  Node *node = text ? allocNode<Node>(tag) : nullptr;
  if (node) {
    node->*field = text;
  } else {
    std::free(text);
  }
  return node;
}

/// Whether `node` was put into an empty `place` that wants its tag.
template <class Node>
bool fits(Node *&place, OCINode *node, NodeTag tag) {
  if (place || !node || node->tag != tag) return false;
  place = static_cast<Node *>(node);
  return true;
}

/// Hands the nodes of a list to `take` and frees the list and what is not taken.
template <class Take>
void distribute(List *list, Take &&take) {
  for (OCINode *node : zev::Elements<OCINode>(list)) {
    if (!take(node)) ReleaseOCINode(node);
  }
  list_free(list);
}

}  // namespace

namespace zev::tnsnames {

OCIHost *makeHost(char *host) {
  return nodeOf(kHostTag, &OCIHost::host, host);
}

OCIPort *makePort(sb4 port) {
  return nodeOf(kPortTag, &OCIPort::port, strdup(std::to_string(port).c_str()));
}

OCISid *makeSid(char *sid) {
  return nodeOf(kSidTag, &OCISid::sid, sid);
}

OCIAddress *makeAddress(List *parameters) {
  auto *address = allocNode<OCIAddress>(kAddressTag);
  distribute(parameters, [address](OCINode *node) {
    return address &&
           (fits(address->host, node, kHostTag) || fits(address->port, node, kPortTag));
  });
  return address;
}

OCINetServiceName *makeService(List *parameters) {
  auto *service = allocNode<OCINetServiceName>(kNetServiceNameTag);
  distribute(parameters, [service](OCINode *node) {
    return service && (fits(service->address, node, kAddressTag) ||
                       fits(service->sid, node, kSidTag));
  });
  return service;
}

List *appended(List *list, OCINode *node) {
  List *longer = lappend(list, node);
  if (longer) return longer;
  ReleaseOCINode(node);
  releaseNodes(list);
  return nullptr;
}

void releaseNodes(List *list) {
  distribute(list, [](const OCINode *) { return false; });
}

}  // namespace zev::tnsnames

extern "C" {

void ReleaseOCIHost(OCIHost *node) {
  release(node, kHostTag);
}
void ReleaseOCIPort(OCIPort *node) {
  release(node, kPortTag);
}
void ReleaseOCIAddress(OCIAddress *node) {
  release(node, kAddressTag);
}
void ReleaseOCISid(OCISid *node) {
  release(node, kSidTag);
}
void ReleaseOCINetServiceName(OCINetServiceName *node) {
  release(node, kNetServiceNameTag);
}

void ReleaseOCINode(void *node) {
  if (!node) return;
  switch (static_cast<OCINode *>(node)->tag) {
    case kHostTag:
      return ReleaseOCIHost(static_cast<OCIHost *>(node));
    case kPortTag:
      return ReleaseOCIPort(static_cast<OCIPort *>(node));
    case kAddressTag:
      return ReleaseOCIAddress(static_cast<OCIAddress *>(node));
    case kSidTag:
      return ReleaseOCISid(static_cast<OCISid *>(node));
    case kNetServiceNameTag:
      return ReleaseOCINetServiceName(static_cast<OCINetServiceName *>(node));
    case kCallableStmtTag:
      return ReleaseOCICallableStmt(static_cast<callableStmt *>(node));
    default:
      return;
  }
}

}  // extern "C"
