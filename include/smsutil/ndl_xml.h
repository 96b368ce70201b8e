/* XML tree library: a document tree of element and attribute nodes, a
 * lenient parser for strings and files, a compact serializer with a
 * growable text buffer, and searches by dotted path, attribute-selecting
 * key and URL-like path.
 *
 * Every allocation goes through one process-wide table of memory
 * functions (NDL_XML_RegMemFunc).  The library writes no log lines.
 * A tree is used by one thread at a time. */
#ifndef SMSUTIL_NDL_XML_H
#define SMSUTIL_NDL_XML_H

#include <stddef.h>
#include <stdint.h>

#include "smsutil/smsutil_export.h"

SMSUTIL_BEGIN_DECLS

/* Results: 0 for success, else one of these. */
#define XML_OK 0u
#define XML_ERR_PARAM 0x1F000701u     /* argument null, empty, out of range, or not allowed here */
#define XML_ERR_EXISTS 0x1F000702u    /* attribute with this prefix and name already present */
#define XML_ERR_NOT_FOUND 0x1F000703u /* node or attribute does not exist */
#define XML_ERR_NO_MEMORY 0x1F000704u /* an allocation failed */
#define XML_ERR_SYNTAX 0x1F000705u    /* malformed XML text */
#define XML_ERR_INDEX 0x1F000706u     /* misplaced or zero index in a URL path */
#define XML_ERR_OPEN 0x1F000707u      /* file cannot be opened */
#define XML_ERR_WRITE 0x1F000708u     /* writing a file failed */
#define XML_ERR_READ 0x1F000709u      /* reading a file failed */

/* XML_Node.kind */
#define XML_NODE_ELEMENT 0u
#define XML_NODE_ATTR 1u

/* Value types of the typed accessors; the caller's variable has the width
 * named (XML_VAL_BOOL: a 32-bit variable holding 0 or 1). */
#define XML_VAL_BOOL 0u
#define XML_VAL_INT32 1u
#define XML_VAL_UINT32 2u
#define XML_VAL_INT16 3u
#define XML_VAL_UINT16 4u
#define XML_VAL_INT8 5u
#define XML_VAL_UINT8 6u

/* One record for elements and attributes.  Strings are owned by the node,
 * NUL-terminated and never empty (absent is null); replace or clear them
 * through the functions below only, since a parsed node keeps its strings
 * in storage it shares with other nodes.  Elements link their
 * children through firstChild/lastChild and prevSibling/nextSibling; an
 * attribute hangs off its element's firstAttr list through nextSibling and
 * has the element as parent. */
typedef struct XML_Node_s {
    char *name;  /* local name (after the prefix's colon) */
    char *value; /* element text or attribute value, entities decoded */
    uint32_t kind;
    char *prefix; /* namespace prefix without the colon */
    struct XML_Node_s *parent;
    struct XML_Node_s *firstChild;
    struct XML_Node_s *lastChild;
    struct XML_Node_s *prevSibling;
    struct XML_Node_s *nextSibling;
    struct XML_Node_s *firstAttr;
} XML_Node;

/* The memory functions, in the order NDL_XML_RegMemFunc takes them. */
typedef void *(*XML_MallocFunc)(size_t size);
typedef void *(*XML_CallocFunc)(size_t count, size_t size);
typedef void (*XML_FreeFunc)(void *ptr);
typedef void *(*XML_ReallocFunc)(void *ptr, size_t size);

typedef struct XML_MemHooks_s {
    XML_MallocFunc pfnMalloc;
    XML_CallocFunc pfnCalloc;
    XML_FreeFunc pfnFree;
    XML_ReallocFunc pfnRealloc;
} XML_MemHooks;

/* Accepted by NDL_XML_RegDebugFunc for interface compatibility only. */
typedef void (*XML_DebugFunc)(const char *text);

/* Growable text buffer: data holds capacity + 1 bytes (null before the
 * first growth) and is NUL-terminated after every successful change. */
typedef struct XML_MemBuf_s {
    char *data;
    uint32_t length;   /* bytes in use */
    uint32_t capacity; /* usable bytes, terminator not counted */
    uint32_t growBy;   /* growth step, 1024 after XML_MembufInit */
} XML_MemBuf;

/* ---- Memory, version ---- */
SMSUTIL_API void *XML_Malloc(size_t size);
SMSUTIL_API void *XML_Calloc(size_t count, size_t size);
SMSUTIL_API void *XML_Realloc(void *ptr, size_t size);
SMSUTIL_API void XML_Free(void *ptr);
/* All four required; otherwise XML_ERR_PARAM and the table is unchanged.
 * Memory allocated before a change is later released through the new
 * pfnFree. */
SMSUTIL_API uint32_t NDL_XML_RegMemFunc(XML_MallocFunc pfnMalloc, XML_CallocFunc pfnCalloc, XML_FreeFunc pfnFree,
                                        XML_ReallocFunc pfnRealloc);
/* Stores nothing: the library writes no diagnostics.  Always
 * XML_ERR_NOT_FOUND. */
SMSUTIL_API uint32_t NDL_XML_RegDebugFunc(XML_DebugFunc pfnDebug);
/* Releases text handed out by NDL_XML_Transform; null is ignored. */
SMSUTIL_API void NDL_XML_FreeMem(void *ptr);
SMSUTIL_API const char *GRV_XML_GetVersion(void);

/* ---- Nodes ---- */
SMSUTIL_API XML_Node *XML_NewNode(uint32_t kind);
/* Copy of text, or null for a null or empty text or a failed allocation. */
SMSUTIL_API char *XML_Strdup(const char *text);
/* Copies the non-empty strings; replaces only those fields.  All or
 * nothing: XML_ERR_NO_MEMORY leaves the node unchanged. */
SMSUTIL_API uint32_t XML_SetNode(XML_Node *node, const char *prefix, const char *name, const char *value);
/* reserved must be 0.  Creates a detached element. */
SMSUTIL_API uint32_t NDL_XML_CreateNode(uint32_t reserved, const char *prefix, const char *name, const char *value,
                                        XML_Node **outNode);
/* Per field: null leaves it, "" clears it, anything else replaces it. */
SMSUTIL_API uint32_t NDL_XML_SetNode(XML_Node *node, const char *prefix, const char *name, const char *value);
/* Releases the node's strings and record only. */
SMSUTIL_API void XML_FreeSingleNode(XML_Node *node);
/* Releases the node, every node after it through nextSibling, and all
 * their subtrees and attributes. */
SMSUTIL_API void XML_FreeNode(XML_Node *node);
/* Detaches the node and releases it with its subtree. */
SMSUTIL_API void NDL_XML_FreeNode(XML_Node *node);

/* Outputs are optional; strings point into the node. */
SMSUTIL_API uint32_t NDL_XML_GetNodeValue(const XML_Node *node, uint32_t *outKind, const char **outPrefix,
                                          const char **outName, const char **outValue);
SMSUTIL_API XML_Node *NDL_XML_GetNodeParent(const XML_Node *node);
SMSUTIL_API XML_Node *NDL_XML_GetNodeFirstChild(const XML_Node *node);
SMSUTIL_API XML_Node *NDL_XML_GetNodeLastChild(const XML_Node *node);
SMSUTIL_API XML_Node *NDL_XML_GetNodeNextSibling(const XML_Node *node);
SMSUTIL_API XML_Node *NDL_XML_GetNodePrevSibling(const XML_Node *node);
SMSUTIL_API uint32_t NDL_XML_GetNodeChildNum(const XML_Node *node, uint32_t *outCount);
/* Next node in document order, not bounded to a subtree; null at the end. */
SMSUTIL_API XML_Node *NDL_XML_Iterator(const XML_Node *node);

/* ---- Linking (only detached nodes are inserted; a node never goes into
 * its own subtree) ---- */
SMSUTIL_API uint32_t NDL_XML_RemoveNode(XML_Node *node);
SMSUTIL_API uint32_t NDL_XML_AddFirstChildNode(XML_Node *parent, XML_Node *child);
SMSUTIL_API uint32_t NDL_XML_AppendChildNode(XML_Node *parent, XML_Node *child);
SMSUTIL_API uint32_t NDL_XML_AddNextSiblingNode(XML_Node *reference, XML_Node *node);
SMSUTIL_API uint32_t NDL_XML_AddPrevSiblingNode(XML_Node *reference, XML_Node *node);

/* ---- Copying: detached copies; nothing is stored on failure ---- */
SMSUTIL_API uint32_t NDL_XML_CloneNodeSelf(const XML_Node *source, XML_Node **outNode);
SMSUTIL_API uint32_t NDL_XML_CloneNode(const XML_Node *source, XML_Node **outNode);

/* ---- Attributes ---- */
SMSUTIL_API uint32_t NDL_XML_GetAttr(const XML_Node *element, const char *prefix, const char *name,
                                     const char **outValue);
SMSUTIL_API uint32_t NDL_XML_GetFirstAttr(const XML_Node *element, const char **outPrefix, const char **outName,
                                          const char **outValue);
SMSUTIL_API uint32_t NDL_XML_GetNextSiblingAttr(const XML_Node *element, const char *prefix, const char *name,
                                                const char **outPrefix, const char **outName, const char **outValue);
/* Appends a fresh attribute node; XML_ERR_EXISTS for a duplicate. */
SMSUTIL_API uint32_t XML_AddAttrNode(XML_Node *attribute, XML_Node *element);
SMSUTIL_API uint32_t NDL_XML_AddAttr(XML_Node *element, const char *prefix, const char *name, const char *value);
SMSUTIL_API uint32_t NDL_XML_SetAttr(XML_Node *element, const char *prefix, const char *name, const char *value);
SMSUTIL_API uint32_t NDL_XML_RemoveAttr(XML_Node *element, const char *prefix, const char *name);

/* ---- Typed values (type XML_VAL_*; the variable's width follows it) ---- */
SMSUTIL_API uint32_t NDL_XML_GetNodeValueEx(const XML_Node *node, uint32_t type, void *outValue);
SMSUTIL_API uint32_t NDL_XML_GetAttrValueEx(const XML_Node *element, const char *prefix, const char *name,
                                            uint32_t type, void *outValue);
SMSUTIL_API uint32_t NDL_XML_SetNodeValueEx(XML_Node *node, uint32_t type, const void *inValue);
SMSUTIL_API uint32_t NDL_XML_SetAttrValueEx(XML_Node *element, const char *prefix, const char *name, uint32_t type,
                                            const void *inValue);

/* ---- Parser: the result is the first top-level element, further ones
 * follow it as siblings (XML_FreeNode releases them all) ---- */
SMSUTIL_API uint32_t NDL_XML_Parse(const char *text, XML_Node **outRoot);
SMSUTIL_API uint32_t NDL_XML_ParseFile(const char *path, XML_Node **outRoot);

/* ---- Text buffer ---- */
SMSUTIL_API void XML_MembufInit(XML_MemBuf *buffer);
SMSUTIL_API void XML_MembufDestroy(XML_MemBuf *buffer);
SMSUTIL_API uint32_t XML_MemBufInsert(XML_MemBuf *buffer, const char *source, uint32_t count, uint32_t position);
SMSUTIL_API uint32_t XML_MemBufAppend(XML_MemBuf *buffer, const char *byte);
SMSUTIL_API uint32_t XML_MemBufAppendStr(XML_MemBuf *buffer, const char *text);
SMSUTIL_API uint32_t XML_MemBufAssign(XML_MemBuf *buffer, const char *source, uint32_t count);
SMSUTIL_API uint32_t XML_MemBufAssignStr(XML_MemBuf *buffer, const char *text);

/* ---- Serializer: the node and its descendants, compact, one line feed
 * after each start tag with children, each childless element and each
 * end tag.  Release the text with NDL_XML_FreeMem. ---- */
SMSUTIL_API uint32_t NDL_XML_Transform(XML_Node *node, char **outText);
SMSUTIL_API uint32_t NDL_XML_TransformFile(XML_Node *node, const char *path);

/* ---- Searches and lookups ---- */
/* Dotted element path ("a.b.c"), matched from the level of start. */
SMSUTIL_API XML_Node *NDL_XML_FindNodeByName(const XML_Node *start, const char *path);
/* First node of start's level named nodeName with an attribute attrName
 * (any prefix) equal to attrValue (any value when null). */
SMSUTIL_API XML_Node *NDL_XML_FindNodeByAttr(const XML_Node *start, const char *nodeName, const char *attrName,
                                             const char *attrValue);
/* Key forms: "a.b.c", "a.b[id]", "a.b[id=7]", "a.b[id=7][name]",
 * "a.b[id=7].c", "a.b[id=7].c[k=v].d".  0 with the selected text copied, or
 * -1 with outText emptied.  These two trust outText to hold the value:
 * prefer the Ex forms, which refuse a value that does not fit outSize
 * bytes including its terminator. */
SMSUTIL_API int NDL_XML_GetNodeOrAttr_Node(const XML_Node *root, const char *key, char *outText);
SMSUTIL_API int NDL_XML_GetNodeOrAttr(const char *file, const char *key, char *outText);
SMSUTIL_API int NDL_XML_GetNodeOrAttr_NodeEx(const XML_Node *root, const char *key, char *outText, size_t outSize);
SMSUTIL_API int NDL_XML_GetNodeOrAttrEx(const char *file, const char *key, char *outText, size_t outSize);
/* URL path "root.child.name.3.p:leaf": the first component names node
 * itself, numbers are 1-based indexes among same-named siblings. */
SMSUTIL_API uint32_t NDL_XML_GetNodeByUrl(XML_Node *node, const char *url, XML_Node **outNode);
/* Appends *inOutNode under the element at path in file and writes the
 * first top-level element's tree to outFile (which may be file).  On 0 the
 * node belongs to the library (the pointer is set to null); on -1 the
 * caller keeps it. */
SMSUTIL_API int NDL_XML_AddNodeToFile(const char *file, const char *path, XML_Node **inOutNode, const char *outFile);

SMSUTIL_END_DECLS

#endif /* SMSUTIL_NDL_XML_H */
