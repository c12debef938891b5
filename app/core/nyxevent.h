#pragma once

class NYXEventClient;
class NYXStack;

/// News of a change, posted on the event bus. Short-lived; payloads are borrowed.
class NYXEvent
{
public:
  enum Type
  {
    StackOpen = 0,
    StackClose = 1,
    StackName = 2,
    StackFileName = 3,
    StackModify = 4,
    Preferences = 26
  };

  virtual ~NYXEvent() = default;
  int type() const { return _type; }

  NYXEventClient* getSender() const { return _sender; }
  void setSender(NYXEventClient* sender) { _sender = sender; }

protected:
  explicit NYXEvent(Type type) : _type(type) {}
  NYXEvent(const NYXEvent&) = default;
  NYXEvent& operator=(const NYXEvent&) = default;

private:
  Type _type;
  NYXEventClient* _sender = nullptr;
};

class NYXStackEvent : public NYXEvent
{
public:
  NYXStack& getStack() const { return *_stack; }

protected:
  NYXStackEvent(Type type, NYXStack& stack) : NYXEvent(type), _stack(&stack) {}

private:
  NYXStack* _stack;
};

struct NYXStackOpenEvent : NYXStackEvent
{
  explicit NYXStackOpenEvent(NYXStack& stack) : NYXStackEvent(StackOpen, stack) {}
};

/// Posted while the stack is still in the server's list.
struct NYXStackCloseEvent : NYXStackEvent
{
  explicit NYXStackCloseEvent(NYXStack& stack) : NYXStackEvent(StackClose, stack) {}
};

struct NYXStackNameEvent : NYXStackEvent
{
  explicit NYXStackNameEvent(NYXStack& stack) : NYXStackEvent(StackName, stack) {}
};

struct NYXStackFileNameEvent : NYXStackEvent
{
  explicit NYXStackFileNameEvent(NYXStack& stack) : NYXStackEvent(StackFileName, stack) {}
};

/// The modified flag of a stack was set or cleared.
struct NYXStackModifyEvent : NYXStackEvent
{
  explicit NYXStackModifyEvent(NYXStack& stack) : NYXStackEvent(StackModify, stack) {}
};

struct NYXPreferencesEvent : NYXEvent
{
  NYXPreferencesEvent() : NYXEvent(Preferences) {}
};
