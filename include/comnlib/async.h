/*
 * comnlib: the asynchronous operation manager.
 *
 * A caller runs a long operation as a stack of small state functions on a handle. Each
 * function returns the status handed to the next; CS_PENDING suspends the chain until an
 * I/O completion is posted (com_async_iopost), a poll finds the handle ready, or the chain
 * is restarted. Handles belong to a manager (one per connection context of the caller);
 * managers belong to an application-global record.
 *
 * The records are opaque. All locking and waiting goes through the caller's callback table
 * and its access-lock and wait routines; without them every lock, unlock, signal and wait
 * counts as done. The library creates no thread and no lock of its own.
 */
#ifndef COMNLIB_ASYNC_H
#define COMNLIB_ASYNC_H

#include "types.h"

COMN_BEGIN_DECLS

typedef struct ComAppGlobal ComAppGlobal;
typedef struct ComAsyncManager ComAsyncManager;
typedef struct ComAsyncHandle ComAsyncHandle;

/* A state function or checkpoint function: gets the handle, its two user values and the
   carried status; returns the next status (CS_PENDING suspends the chain). */
typedef int32_t (*ComAsyncStateFunc)(ComAsyncHandle *hndl, void *user1, void *user2,
                                     int32_t status);

/*
 * Thread callback table, eight slots in this order; each returns CS_SUCCEED on success.
 * A lock result of 0 means "could not" and is passed on. Events behave as auto-reset
 * events that remember one signal: a wait returns at once if a signal came since the last
 * wait, else blocks until the next one. A null slot counts as done. The table is not
 * copied: it must outlive every record made with it.
 */
typedef struct ComThreadCallbacks {
    int32_t (*create_mutex)(void **mutex);
    int32_t (*delete_mutex)(void *mutex);
    int32_t (*take_mutex)(void *mutex);
    int32_t (*release_mutex)(void *mutex);
    int32_t (*create_event)(void **event);
    int32_t (*delete_event)(void *event);
    int32_t (*signal_event)(void *event);
    int32_t (*wait_event)(void *event);
} ComThreadCallbacks;

/* The caller's wait routine of a manager: called by com_async_poll while operations are
   pending, with the handle polled (or null for the whole manager) and the poll's timeout.
   CS_SUCCEED polls again, CS_INTERRUPT waits again, CS_TIMED_OUT and CS_QUIET end the
   poll with that status, anything else ends it with that result. */
typedef int32_t (*ComAsyncWaitFunc)(ComAsyncManager *mgr, ComAsyncHandle *hndl, int32_t timeout);

/* The caller's access lock of a manager: action COM_ASYNC_ENTER or COM_ASYNC_LEAVE. */
typedef int32_t (*ComAsyncLockFunc)(ComAsyncManager *mgr, int32_t action);
#define COM_ASYNC_ENTER 1
#define COM_ASYNC_LEAVE 2

/* Hooks of the application-global record. */
typedef int32_t (*ComAsyncPostFunc)(ComAsyncHandle *hndl, int32_t status);
typedef int32_t (*ComAsyncAccessTest)(ComAppGlobal *global);
/* Consulted at the start of each com_async_poll; returns the manager to poll instead of
   mgr, or null to keep mgr. */
typedef ComAsyncManager *(*ComAsyncChooseFunc)(ComAsyncManager *mgr, ComAsyncHandle *hndl);
/* Called by com_async_start; any result other than CS_SUCCEED refuses the start. */
typedef int32_t (*ComAsyncStartHook)(ComAsyncHandle *hndl);

typedef struct ComAsyncHooks {
    ComAsyncPostFunc iopost;   /* handed to each handle at start (com__async_iopost) */
    ComAsyncAccessTest access; /* access test (com__async_access) */
    ComAsyncChooseFunc chooser;
    ComAsyncStartHook start;
} ComAsyncHooks;

/* Application-global flags (com_appglobal_alloc, com_async_init). */
#define COM_ASYNC_GLOBAL_STATIC 0x1  /* use Application_global instead of a fresh record */
#define COM_ASYNC_GLOBAL_NOHOOKS 0x2 /* managers do not install iopost and access hooks */

/* Handle states. */
#define COM_ASYNC_IDLE 1    /* no operation, or its completion has been taken */
#define COM_ASYNC_POSTED 2  /* I/O posted, waiting to be run by a poll */
#define COM_ASYNC_READY 3   /* ready to run (restart requested) */
#define COM_ASYNC_RUNNING 4 /* running or pending */
#define COM_ASYNC_DONE 5    /* completed, result not yet taken */

/* Handle flags (property COM_ASYNC_PROP_FLAGS). */
#define COM_ASYNC_F_INLINE 0x1     /* run the stack inline when I/O is posted */
#define COM_ASYNC_F_POLLRUN 0x2    /* a post leaves the handle to a poll (state 2) */
#define COM_ASYNC_F_SIGNALONLY 0x4 /* a post only signals the events */
#define COM_ASYNC_F_RUNNING 0x8    /* the stack is running (set by the library) */
#define COM_ASYNC_F_EVENTWAIT 0x10 /* an event wait is requested (set by the library) */

/* com_async_props actions and properties. */
#define COM_ASYNC_SET 1
#define COM_ASYNC_GET 2
#define COM_ASYNC_PROP_USER1 1 /* value points to a void * */
#define COM_ASYNC_PROP_USER2 2 /* value points to a void * */
#define COM_ASYNC_PROP_FLAGS 3 /* value points to an int32_t; set ORs the bits in */

/* com_async_complete flags. */
#define COM_ASYNC_COMP_ANYSTATE 0x2 /* complete even when the handle is not running */
#define COM_ASYNC_COMP_KEEP 0x4     /* leave the completion to be taken (state 5) */

/* Checkpoint masks. */
#define COM_ASYNC_CHECK_STEP 0x2     /* at start and before each state function */
#define COM_ASYNC_CHECK_COMPLETE 0x4 /* at completion */

/* com_async_poll flags. */
#define COM_ASYNC_POLL_ONE 0x1  /* poll only the given handle */
#define COM_ASYNC_POLL_TAKE 0x4 /* a completion found is taken (the handle becomes idle) */
#define COM_ASYNC_POLL_EVENT                                                                       \
    0x8 /* wait on the event before each poll until the event wait                                 \
           is ended by com_async_comp_event_wait */

/* com_async_status results. */
#define COM_ASYNC_STAT_DONE 1
#define COM_ASYNC_STAT_PENDING 2

/* com_async_get_hndl_by_func flags. */
#define COM_ASYNC_MATCH_USER1 0x1 /* also match user value 1 of the reference handle */
#define COM_ASYNC_MATCH_TAKE 0x4  /* mark the handle found as taken (idle) */

/* The static application-global record (selected by COM_ASYNC_GLOBAL_STATIC). */
extern COMN_API ComAppGlobal Application_global;

/* ---- Application-global record ---- */
COMN_API int32_t com_appglobal_alloc(ComAppGlobal **global, const ComThreadCallbacks *callbacks,
                                     int32_t flags);
COMN_API int32_t com_appglobal_drop(ComAppGlobal *global, int32_t flags);
/* Sets (COM_ASYNC_SET) or reads (COM_ASYNC_GET) the four hooks of a global record. */
COMN_API int32_t com_appglobal_hooks(ComAppGlobal *global, int32_t action, ComAsyncHooks *hooks);

/* ---- Managers ---- */
COMN_API int32_t com_async_init(ComAsyncManager **mgr, ComAsyncWaitFunc waitfunc,
                                ComAsyncLockFunc accessfunc, int32_t flags,
                                const ComThreadCallbacks *callbacks);
/* Shut drops every handle in the manager's list, borrowed ones included. Handles the
   manager lent to others must come back first (com_async_exit does so for the other way). */
COMN_API int32_t com_async_shut(ComAsyncManager *mgr, int32_t force);
COMN_API int32_t com_async_exit(ComAsyncManager *mgr);
COMN_API int32_t com_async_assoc(ComAsyncHandle *hndl, ComAsyncManager *mgr);

/* ---- Handles, their stack and checkpoints ---- */
COMN_API int32_t com_async_alloc(ComAsyncManager *mgr, ComAsyncHandle **hndl, int32_t depth);
COMN_API int32_t com_async_drop(ComAsyncHandle *hndl);
COMN_API int32_t com_async_props(ComAsyncHandle *hndl, int32_t action, int32_t property,
                                 void *value);
/* Pushes a state function; the function pushed last runs first. CS_FAIL when full. */
COMN_API int32_t com_async_push(ComAsyncHandle *hndl, ComAsyncStateFunc func);
/* The handle's state (COM_ASYNC_IDLE .. COM_ASYNC_DONE) and the number of state functions
   still on its stack; either out pointer may be null. */
COMN_API int32_t com_async_state(ComAsyncHandle *hndl, int32_t *state, int32_t *stacked);
COMN_API int32_t com_async_reg_checkfunc(ComAsyncHandle *hndl, ComAsyncStateFunc func,
                                         int32_t mask);

/* ---- Running ---- */
/* Start sets the handle running (state 4) without running anything; the owner then runs the
   stack (com__async_runstack) or lets a post or a poll run it. A run of an empty stack is
   refused with CS_FAIL; a run of a stack already running elsewhere with CS_BUSY. When the
   manager has an access routine but no callback table, a run releases the handle under the
   access lock, which a poll of the whole manager already holds: such an access lock must
   let its holder enter again. */
COMN_API int32_t com_async_start(ComAsyncHandle *hndl);
COMN_API int32_t com_async_restart(ComAsyncHandle *hndl, int32_t status);
COMN_API int32_t com_async_abort(ComAsyncHandle *hndl);
COMN_API int32_t com__async_runstack(ComAsyncHandle *hndl);
COMN_API int32_t com_async_iopost(ComAsyncHandle *hndl, int32_t status);
COMN_API int32_t com__async_iopost(ComAsyncHandle *hndl, int32_t status);
COMN_API int32_t com__async_access(ComAppGlobal *global);

/* ---- Polling ---- */
COMN_API int32_t com__async_poll_state(ComAsyncHandle *hndl, int32_t pollflags);
/* Polls one handle or every handle of mgr; *found gets the handle that ended the walk, and
 *maywait (may be null) is set when a pending handle lets a zero timeout wait. */
COMN_API int32_t com__async_do_poll(ComAsyncManager *mgr, ComAsyncHandle *hndl, int32_t pollflags,
                                    ComAsyncHandle **found, int32_t *maywait);
/* Polls until something is reported. CS_SUCCEED with *found: a completion (a completed
   handle counts only once the run that completed it has let go of it); CS_QUIET: nothing
   under way; CS_TIMED_OUT: still pending at a zero timeout, pending with no wait routine,
   the wait routine's timeout, or the stack is running on another thread; other results are
   failures, with *found the handle concerned. mgr may be null for a single-handle poll. */
COMN_API int32_t com_async_poll(ComAsyncManager *mgr, ComAsyncHandle *hndl, int32_t timeout,
                                int32_t pollflags, ComAsyncHandle **found);

/* ---- Completion ---- */
COMN_API int32_t com_async_complete(ComAsyncHandle *hndl, int32_t code, int32_t status,
                                    int32_t flags);
COMN_API int32_t com_async_status(ComAsyncHandle *hndl, int32_t *status);
COMN_API int32_t com_async_getcomp(ComAsyncHandle *hndl, void **user1, void **user2, int32_t *code,
                                   int32_t *status);
COMN_API int32_t com_async_get_hndl_by_func(ComAsyncManager *mgr, int32_t flags,
                                            ComAsyncHandle *ref, ComAsyncHandle **found,
                                            int32_t code);
COMN_API int32_t com_async_comp_event_wait(ComAsyncHandle *hndl);

COMN_END_DECLS

#endif
