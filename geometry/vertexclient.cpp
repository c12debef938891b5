#include "geometry/vertexclient.h"

#include <utility>

template <class T> VertexClient<T>::VertexClient(int space, int size, int capacity, int growth)
  : _server(new VertexServer<T>(space, size, capacity, growth))
{
  _server->ref();
}

template <class T> VertexClient<T>::VertexClient(int space, BufferVector<T>&& coordinates)
  : _server(new VertexServer<T>(space, std::move(coordinates)))
{
  _server->ref();
}

template <class T> VertexClient<T>::VertexClient(const VertexClient<T>& client) : _server(client._server)
{
  _server->ref();
}

template <class T> VertexClient<T>& VertexClient<T>::operator=(const VertexClient<T>& client)
{
  if (this != &client) setServer(*client._server);
  return *this;
}

template <class T> VertexClient<T>::~VertexClient()
{
  _server->deref();
}

template <class T> void VertexClient<T>::setServer(VertexServer<T>& server)
{
  if (&server == _server) return;
  server.ref();
  _server->deref();
  _server = &server;
}

template <class T> void VertexClient<T>::detach()
{
  ownServer();
}

template <class T> void VertexClient<T>::detachServer()
{
  setServer(*new VertexServer<T>(*_server));
}

GEOMETRY_INSTANTIATE(VertexClient)
