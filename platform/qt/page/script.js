// The program's hand in every document. Runs in an isolated world of its own, in every frame, before the page's
// scripts; page code cannot reach anything of it. Evaluates to a function that takes the functions of the other files
// in this folder, under the files' names, and the configuration:
//   up, down   random keys of this run, which seal what frames tell the top frame, and what it tells them
//   straggler  ms after DOMContentLoaded when a document without its load event counts as completed
//   answer     ms that a frame has for an answer
//
// Program to top frame: calls of the object that the isolated world's global holds under `kestrune`
//   image(id, parts, request)  image of a document as JSON; "" when it comes later by an event; "null" when gone,
//                              "unreadable" when it is there and has no image
//   take(request)              the text that a "ready" event announced
//   apply(edits)               [{kind, document, element, text}, ...]
//   menu(point, request)       which document and field a menu asked for at this point of the window is meant for (null:
//                              by key); the field there gets the focus
//   stop()                     the user stopped the load
// Top frame to program: events over the web channel, each a JSON object
//   {event: "begin", id, url, error}   a document has taken over the top window; error: the engine's own error page
//   {event: "frame"}                   a document has taken over a frame
//   {event: "complete", id, url}       a document has completed; frames before the document they lie in
//   {event: "image", request, text}    the late answer to image(), when it is short
//   {event: "ready", request}          the late answer is there to be taken
//   {event: "submit", id, form, ...}   a form of the document is about to be sent; see submission.js
//   {event: "menu", request, id, element, x, y}  the answer to menu(): the document, "" for none, the field that has the
//                                      focus there, and where the menu belongs
// Frame to top frame: one window message {id, url, origin, error} that carries a port; everything else goes over the
// port. Page code can come by both, so all of it is sealed; see seal.js.
//   {event: "complete", url}, {event: "gone"}, {event: "submit", form, ...}, {answer: number, value}
// Top frame to frame, over the port: {id, ask: "image" | "apply" | "stop" | "ping" | "pointAt" | "focusPlace", number, value}
//
// An image is {id, url, origin, tags: [text], links: [[element, text]], forms: [form], inputs: [element], active: element,
// source, frames: [image]}. A form is {element, id, action, actionInput, elements}; an element {element, type, name,
// value, src, formAction, checked, options: [[element, text, value, selected]], label, from}; what is empty or false is left out.
(function (files, config) {
    const key = 'kestrune';
    // The engine runs scripts again in some documents.
    const before = Object.hasOwn(globalThis, key) ? globalThis[key] : null;
    if (before && before.document === document && !before.adopted)
        return;

    const natives = files.natives();
    const Agent = files.agent(natives, files.labels(natives));
    const completion = files.completion(natives, config);
    const hearSubmissions = files.submission(natives, files.encoding(natives), files.referrer(natives));

    // The top frame may have come first.
    const agent = before && before.document === document ? before.agent : new Agent(window);
    const ours = { document, agent };
    Object.defineProperty(globalThis, key, { value: ours, configurable: true });
    const errorPage = location.protocol === 'chrome-error:';

    if (window !== window.top) {
        const { connect, serveFrame } = files.frame(completion, hearSubmissions, files.seal(), config);
        if (errorPage)
            connect({ id: agent.id, url: '', error: true });
        else
            serveFrame(agent);
    } else if (errorPage) {
        qt.webChannelTransport.send(JSON.stringify({
            type: 6, object: key, method: 'post', id: 1,
            args: [JSON.stringify({ event: 'begin', id: agent.id, url: '', error: true })],
        }));
    } else {
        files.top(natives, completion, hearSubmissions, Agent, files.remote(files.seal(), config), config)(agent, ours);
    }
})
