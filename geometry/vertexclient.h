#pragma once

#include "geometry/vertexserver.h"

/// Handle on a vertex server that other clients may share.
///
/// Copies share the server; an operation that writes vertices calls detach() first (copy-on-write).
template <class T> class VertexClient
{
public:
  /// A client with a new server of its own; see VertexServer for the arguments.
  VertexClient(int space, int size, int capacity, int growth);
  VertexClient(int space, BufferVector<T>&& coordinates);
  VertexClient(const VertexClient<T>& client);
  VertexClient<T>& operator=(const VertexClient<T>& client);
  virtual ~VertexClient();

  /// Shares the other client's server from now on.
  void assign(const VertexClient<T>& client) { setServer(*client._server); }
  void setServer(VertexServer<T>& server);

  /// Takes a private copy of the vertices when another client shares them; they are about to be changed.
  virtual void detach();

  /// Number of coordinates per vertex.
  int getSpace() const { return _server->getSpace(); }
  const VertexServer<T>& getServer() const { return *_server; }

protected:
  bool isShared() const { return _server->getNumReferences() > 1; }
  void detachServer();
  /// The server for writing: private to this client.
  VertexServer<T>& ownServer()
  {
    if (isShared()) detachServer();
    _server->noteChange();
    return *_server;
  }

private:
  VertexServer<T>* _server; // destroyed with its last reference
};

GEOMETRY_EXTERN_TEMPLATE(VertexClient)
