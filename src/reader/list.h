// The one singly linked list of the reader, appended at the tail. Records are found by their key through an index
// (index.h), where the first one wins.
#ifndef MIFREADER_SRC_READER_LIST_H
#define MIFREADER_SRC_READER_LIST_H

// Record has a member `Record *next`, null in a record that is not linked yet. The list does not own its records: its
// owner takes them off one by one with `takeFirst` and releases them. A cleared list is empty.
template <typename Record>
struct MifList {
    Record *head;
    Record *tail;

    bool empty() const
    {
        return head == nullptr;
    }

    void append(Record *record)
    {
        if (head == nullptr) {
            head = record;
        } else {
            tail->next = record;
        }
        tail = record;
    }

    // Unlinks and returns the first record; null when the list is empty.
    Record *takeFirst()
    {
        Record *record = head;
        if (record != nullptr) {
            head = record->next;
            if (head == nullptr) {
                tail = nullptr;
            }
        }
        return record;
    }
};

#endif
