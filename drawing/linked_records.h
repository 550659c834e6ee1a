// Doubly linked lists of records with `prev` and `next` links and a
// process-wide head, new records at the tail.
#pragma once

template <typename Record>
void LinkAtTail(Record *&head, Record *record)
{
    Record **end = &head;
    Record *last = nullptr;
    while (*end) {
        last = *end;
        end = &(*end)->next;
    }
    record->prev = last;
    record->next = nullptr;
    *end = record;
}

template <typename Record>
void Unlink(Record *&head, Record *record)
{
    if (record->prev)
        record->prev->next = record->next;
    else
        head = record->next;
    if (record->next)
        record->next->prev = record->prev;
}
