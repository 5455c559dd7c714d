// When a document counts as completed, and how listeners survive document.open().
(function ({ native, after }, config) {
    // Calls `completed` once, when the document counts as completed.
    function watch(agent, completed) {
        const complete = () => {
            if (agent.complete)
                return;
            agent.complete = true;
            completed();
        };
        const loaded = (event) => {
            if (event.isTrusted && event.target === document)
                after(complete);
        };
        const parsed = (event) => {
            if (event.isTrusted)
                setTimeout(complete, config.straggler);
        };
        const arm = () => {
            window.addEventListener('load', loaded, true);
            document.addEventListener('DOMContentLoaded', parsed, true);
        };
        arm();
        if (agent.complete)
            completed();
        else if (native.readyState(document) === 'complete')
            after(complete);
        else if (native.readyState(document) === 'interactive')
            setTimeout(complete, config.straggler); // too late to hear that it was parsed
        return { arm, complete };
    }

    // document.open() takes every listener away; what it cannot take is an observer of the document's children.
    function keepArmed(arm) {
        new MutationObserver(arm).observe(document, { childList: true });
    }

    return { watch, keepArmed };
})
