-- One row for each file that was found. Times are in UTC.
CREATE TABLE files (
    id INTEGER PRIMARY KEY,
    path TEXT NOT NULL UNIQUE,      -- absolute, or a URL; the bytes of the name (BLOB) if it isn't UTF-8
    size INTEGER,                   -- in bytes
    mtime_ns INTEGER,               -- when the file was changed, in nanoseconds since 1970
    aspects INTEGER NOT NULL,       -- what was asked: 1 format, 2 parts, 4 relationships, 8 properties, 16 externals, 32 signatures, 64 findings
    scanned_at TEXT NOT NULL,
    vanished_at TEXT,               -- when a run first didn't find or take it any more
    format TEXT,                    -- the usual extension, by the content
    description TEXT,
    media_type TEXT,
    is_package INTEGER,
    conformance TEXT,               -- transitional, strict
    has_macros INTEGER,
    is_encrypted INTEGER,
    main_part TEXT,
    signature_state TEXT,           -- unsigned, holds, unproven, broken, unreadable
    properties_failure TEXT,        -- why the core properties can't be read
    unlisted_findings INTEGER,      -- how many there are beside those in findings
    error_class TEXT,               -- why something that was asked for isn't there; null if everything is
    error_kind TEXT,                -- format, not-found, state, store, signature, limit, installation
    error_code INTEGER,
    error_message TEXT,
    error_part TEXT,
    error_relationship TEXT
);
CREATE INDEX files_format ON files (format);
CREATE INDEX files_error ON files (error_class) WHERE error_class IS NOT NULL;

CREATE TABLE parts (
    file_id INTEGER NOT NULL REFERENCES files (id),
    name TEXT NOT NULL,
    content_type TEXT NOT NULL,
    size INTEGER NOT NULL           -- in bytes, uncompressed
);
CREATE INDEX parts_file ON parts (file_id);
CREATE INDEX parts_content_type ON parts (content_type);

CREATE TABLE relationships (
    file_id INTEGER NOT NULL REFERENCES files (id),
    source TEXT NOT NULL,           -- a part name, or / for the package
    id TEXT NOT NULL,
    type TEXT NOT NULL,
    target TEXT NOT NULL,           -- as it stands in the package
    resolved TEXT,                  -- the part name that it leads to; null if it is external
    is_external INTEGER NOT NULL,
    target_exists INTEGER           -- null if it is external
);
CREATE INDEX relationships_file ON relationships (file_id);
CREATE INDEX relationships_type ON relationships (type);

CREATE TABLE properties (
    file_id INTEGER NOT NULL REFERENCES files (id),
    name TEXT NOT NULL,             -- title, creator, modified …
    value TEXT NOT NULL             -- keywords: each in a row of its own
);
CREATE INDEX properties_file ON properties (file_id);
CREATE INDEX properties_value ON properties (name, value);

CREATE TABLE externals (
    file_id INTEGER NOT NULL REFERENCES files (id),
    effect TEXT NOT NULL,           -- loads (on opening), click, other
    place TEXT NOT NULL,            -- web, share, file, mail, other
    host TEXT,                      -- of a target on the web, on a share, or of mail
    source TEXT NOT NULL,
    id TEXT NOT NULL,
    type TEXT NOT NULL,
    target TEXT NOT NULL
);
CREATE INDEX externals_file ON externals (file_id);
CREATE INDEX externals_host ON externals (effect, host);

CREATE TABLE signatures (
    file_id INTEGER NOT NULL REFERENCES files (id),
    profile TEXT NOT NULL,          -- standard, opcmodel
    name TEXT NOT NULL,
    part TEXT,
    signer TEXT,                    -- the subject of the certificate, or key
    fingerprint TEXT,               -- of the certificate: SHA-256
    time TEXT,                      -- as the signer claims
    holds INTEGER NOT NULL,         -- whether it is a yes; in the profile opcmodel, unchanged and by an accepted signer
    cryptography TEXT,              -- valid, weak, broken
    coverage TEXT,                  -- complete, partial
    trust TEXT,                     -- not checked, unknown, trusted, not trusted
    reason TEXT                     -- why it isn't a yes
);
CREATE INDEX signatures_file ON signatures (file_id);
CREATE INDEX signatures_fingerprint ON signatures (fingerprint);

CREATE TABLE findings (
    file_id INTEGER NOT NULL REFERENCES files (id),
    rule TEXT NOT NULL,
    severity TEXT NOT NULL,         -- error, warning, info
    part TEXT,
    item TEXT,                      -- of the archive, that is no part
    relationship TEXT,
    target TEXT,
    line INTEGER,
    message TEXT NOT NULL,
    fingerprint TEXT NOT NULL       -- the same in later runs as long as the fault stays
);
CREATE INDEX findings_file ON findings (file_id);
CREATE INDEX findings_rule ON findings (rule);
